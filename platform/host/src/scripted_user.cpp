#include "zvhost/scripted_user.h"

#include <charconv>

namespace zvhost {

namespace {

std::optional<int32_t> ParseWhole(const std::string& text) {
  int32_t value = 0;
  const char* end = text.data() + text.size();
  auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (ec != std::errc() || ptr != end || text.empty()) return std::nullopt;
  return value;
}

// A multi-line edit takes one line per ';' or line feed, each ended by a
// carriage return and line feed as the user's Enter key would leave it.
std::string AsEditLines(const std::string& value) {
  std::string out;
  std::string line;
  auto flush = [&] {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    out += line;
    out += "\r\n";
    line.clear();
  };
  for (char c : value) {
    if (c == ';' || c == '\n') {
      flush();
    } else {
      line += c;
    }
  }
  if (!line.empty()) flush();
  return out;
}

// The radio buttons of the group that `first` opens, in template order: the
// group runs on until the next control that starts a group.
std::vector<int32_t> RadioGroup(uint32_t templateId, int32_t first) {
  std::vector<int32_t> group;
  const DialogTemplate* tmpl = HostDialogTemplate(templateId);
  if (tmpl == nullptr) return group;
  bool inside = false;
  for (const ControlTemplate& c : tmpl->controls) {
    if (!inside) {
      if (c.id == first) {
        inside = true;
        group.push_back(c.id);
      }
      continue;
    }
    if (c.groupStart) break;
    if (c.kind == ControlKind::kRadio) group.push_back(c.id);
  }
  return group;
}

}  // namespace

UserStep UserStep::Set(int32_t control, std::string value) {
  UserStep s;
  s.kind = Kind::kSet;
  s.control = control;
  s.value = std::move(value);
  return s;
}

UserStep UserStep::SetNamed(std::string name, std::string value) {
  UserStep s = Set(0, std::move(value));
  s.controlName = std::move(name);
  return s;
}

UserStep UserStep::Press(int32_t control) {
  UserStep s;
  s.kind = Kind::kPress;
  s.control = control;
  return s;
}

UserStep UserStep::DoubleClick(int32_t control, int32_t entry) {
  UserStep s;
  s.kind = Kind::kDoubleClick;
  s.control = control;
  s.entry = entry;
  return s;
}

UserStep UserStep::Action(DialogAction action) {
  UserStep s;
  s.kind = Kind::kAction;
  s.action = std::move(action);
  return s;
}

void ScriptedUser::Queue(const std::vector<UserStep>& steps) {
  steps_.insert(steps_.end(), steps.begin(), steps.end());
}

std::optional<DialogAction> ScriptedUser::NextAction(WinDialog& dialog) {
  dialogsSeen_.push_back(dialog.templateId());
  if (steps_.empty()) return std::nullopt;
  UserStep step = std::move(steps_.front());
  steps_.pop_front();
  std::string problem;
  std::optional<DialogAction> action = Resolve(step, dialog, &problem);
  if (!action) {
    problems_.push_back("dialog " + std::to_string(dialog.templateId()) + ": " + problem);
    steps_.clear();
  }
  return action;
}

std::optional<DialogAction> ScriptedUser::Resolve(const UserStep& step, const WinDialog& dialog,
                                                  std::string* problem) {
  using Kind = DialogAction::Kind;
  auto fail = [&](std::string why) -> std::optional<DialogAction> {
    if (problem) *problem = std::move(why);
    return std::nullopt;
  };
  if (!step.controlName.empty()) {
    const DialogTemplate* tmpl = HostDialogTemplate(dialog.templateId());
    std::string names;
    if (tmpl != nullptr) {
      for (const ControlTemplate& c : tmpl->controls) {
        if (c.name == step.controlName) {
          UserStep numbered = step;
          numbered.controlName.clear();
          numbered.control = c.id;
          return Resolve(numbered, dialog, problem);
        }
        if (!c.name.empty()) names += (names.empty() ? "" : ", ") + c.name;
      }
    }
    return fail(
        "\"" + step.controlName + "\" is not a control of \"" + dialog.Caption() + "\"; " +
        (names.empty() ? std::string("it has no named controls") : "its names are " + names));
  }
  const std::string name = "control " + std::to_string(step.control);
  switch (step.kind) {
    case UserStep::Kind::kAction:
      return step.action;
    case UserStep::Kind::kPress:
      if (step.control == kIdOk || step.control == kIdCancel) {
        return DialogAction{Kind::kPress, step.control};
      }
      break;
    case UserStep::Kind::kDoubleClick:
    case UserStep::Kind::kSet:
      break;
  }
  if (!dialog.HasControl(step.control)) return fail("there is no " + name);
  // A user cannot reach a disabled control; saying so beats a silent refusal.
  if (!dialog.IsEnabled(step.control)) return fail(name + " is disabled");
  if (step.kind == UserStep::Kind::kPress) return DialogAction{Kind::kPress, step.control};
  if (step.kind == UserStep::Kind::kDoubleClick) {
    return DialogAction{Kind::kDoubleClick, step.control, {}, step.entry};
  }
  switch (dialog.KindOf(step.control)) {
    case ControlKind::kEdit:
      return DialogAction{Kind::kSetText, step.control, step.value};
    case ControlKind::kMultiLineEdit:
      return DialogAction{Kind::kSetText, step.control, AsEditLines(step.value)};
    case ControlKind::kComboBox:
      if (auto entry = ParseWhole(step.value)) {
        return DialogAction{Kind::kSelect, step.control, {}, *entry};
      }
      return DialogAction{Kind::kSetText, step.control, step.value};
    case ControlKind::kCheckBox: {
      std::optional<int32_t> state = ParseWhole(step.value);
      if (step.value == "on" || step.value == "yes") state = 1;
      if (step.value == "off" || step.value == "no") state = 0;
      if (!state || (*state != 0 && *state != 1)) {
        return fail(name + " is a check box: give 1 (on) or 0 (off), not \"" + step.value + "\"");
      }
      return DialogAction{Kind::kCheck, step.control, {}, *state};
    }
    case ControlKind::kListBox: {
      auto entry = ParseWhole(step.value);
      if (!entry || *entry < 0) return fail(name + " is a list: give an entry number from 0");
      return DialogAction{Kind::kSelect, step.control, {}, *entry};
    }
    case ControlKind::kRadio: {
      auto entry = ParseWhole(step.value);
      if (!entry || *entry < 0)
        return fail(name + " is a radio group: give an entry number from 0");
      std::vector<int32_t> group = RadioGroup(dialog.templateId(), step.control);
      int32_t target = 0;
      if (static_cast<size_t>(*entry) < group.size()) {
        target = group[static_cast<size_t>(*entry)];
      } else if (group.empty()) {
        // Without the template, the buttons of a group are numbered in a row.
        target = step.control + *entry;
      } else {
        return fail(name + " opens a group of " + std::to_string(group.size()) +
                    " radio buttons; entry " + step.value + " is not among them");
      }
      if (!dialog.HasControl(target) || dialog.KindOf(target) != ControlKind::kRadio) {
        return fail("entry " + step.value + " of the radio group " + name + " is not a button");
      }
      return DialogAction{Kind::kSelect, target, {}, 0};
    }
    case ControlKind::kButton:
    case ControlKind::kImageButton:
      return DialogAction{Kind::kPress, step.control};
    case ControlKind::kStatic:
    case ControlKind::kGroupBox:
      break;
  }
  return fail(name + " cannot be set: it is a label");
}

const DialogTemplate* HostDialogTemplate(uint32_t templateId) {
  static ModuleRef resources = WinLoadLibrary("keel4res.dll");
  if (resources == 0) return nullptr;
  return WinFindDialogTemplate(resources, templateId);
}

}  // namespace zvhost
