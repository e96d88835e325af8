// The headless modal dialog engine. DoModal builds the controls of a
// template, then plays the driver's actions as a user would: each action
// changes a control and sends the notification that a real control sends.
// An action that a user could not perform (on a missing or disabled control,
// or of the wrong kind for the control) is refused with a line on stderr and
// the dialog goes on with the next one.
#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "win_internal.h"

namespace {

constexpr int32_t kMaxActionsPerDialog = 10000;

struct Control {
  int32_t id = 0;
  ControlKind kind = ControlKind::kStatic;
  std::string text;
  bool groupStart = false;
  bool enabled = true;
  int32_t state = 0;                 // check boxes and radio buttons
  int32_t selStart = 0, selEnd = 0;  // edit controls; equal for a plain caret
  int32_t firstVisibleLine = 0;
  std::vector<std::string> entries;  // list and combo boxes
  int32_t curSel = -1;
  uint32_t image = 0;
};

struct Engine {
  WinDialogDriver* driver = nullptr;
  std::vector<DialogRun> log;
};

Engine& State() {
  static Engine engine;
  return engine;
}

const char* KindName(ControlKind kind) {
  switch (kind) {
    case ControlKind::kStatic:
      return "a static text";
    case ControlKind::kEdit:
      return "an edit control";
    case ControlKind::kMultiLineEdit:
      return "a multi-line edit control";
    case ControlKind::kCheckBox:
      return "a check box";
    case ControlKind::kRadio:
      return "a radio button";
    case ControlKind::kListBox:
      return "a list box";
    case ControlKind::kComboBox:
      return "a combo box";
    case ControlKind::kButton:
      return "a button";
    case ControlKind::kImageButton:
      return "an image button";
    case ControlKind::kGroupBox:
      return "a group box";
  }
  return "an unknown control";
}

bool IsEdit(ControlKind kind) {
  return kind == ControlKind::kEdit || kind == ControlKind::kMultiLineEdit ||
         kind == ControlKind::kComboBox;
}
bool IsList(ControlKind kind) {
  return kind == ControlKind::kListBox || kind == ControlKind::kComboBox;
}
bool IsCheckable(ControlKind kind) {
  return kind == ControlKind::kCheckBox || kind == ControlKind::kRadio;
}
bool IsButton(ControlKind kind) {
  return kind == ControlKind::kButton || kind == ControlKind::kImageButton;
}
bool TakesFocus(ControlKind kind) {
  return kind != ControlKind::kStatic && kind != ControlKind::kGroupBox;
}

int32_t TextLength(const std::string& text) {
  return static_cast<int32_t>(text.size());
}

}  // namespace

struct WinDialog::Impl {
  uint32_t templateId;
  WindowRef window = 0;
  std::string caption;
  std::vector<Control> controls;
  int32_t focus = 0;
  bool running = false;
  std::optional<int32_t> result;

  // Prints "dialog <id>: <problem>" on stderr.
  void Say(const char* format, ...) const __attribute__((format(printf, 2, 3))) {
    std::fprintf(stderr, "dialog %u: ", templateId);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
  }

  // -1 marks controls that code never addresses, so it finds none.
  Control* Find(int32_t id) {
    if (id == -1) return nullptr;
    for (Control& c : controls) {
      if (c.id == id) return &c;
    }
    return nullptr;
  }

  // The control `id` for a program call that needs it to pass `fits`; a
  // missing control or one of the wrong kind is reported and gives nullptr.
  Control* For(int32_t id, bool (*fits)(ControlKind), const char* operation) {
    Control* c = Find(id);
    if (c == nullptr) {
      Say("control %d does not exist (%s)", id, operation);
    } else if (fits != nullptr && !fits(c->kind)) {
      Say("%s on control %d, %s", operation, id, KindName(c->kind));
      c = nullptr;
    }
    return c;
  }

  // Puts the window system back as it was when a run ends, also when an
  // exception leaves a handler; the driver then hears of a cancel.
  class RunGuard {
   public:
    RunGuard(Impl& impl, WinDialog& dialog)
        : impl_(impl), dialog_(dialog), previousActive_(WinGetActiveWindow()) {}
    void Closed() { closed_ = true; }
    ~RunGuard() {
      if (!closed_ && State().driver != nullptr) State().driver->DialogClosed(dialog_, kIdCancel);
      WinDestroyWindow(impl_.window);
      impl_.window = 0;
      impl_.controls.clear();
      impl_.focus = 0;
      impl_.running = false;
      WinSetActiveWindow(previousActive_);
    }
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;

   private:
    Impl& impl_;
    WinDialog& dialog_;
    WindowRef previousActive_;
    bool closed_ = false;
  };

  bool Perform(WinDialog& dialog, const DialogAction& action);

  // Radio buttons of the group that holds `index`: the group runs from the
  // nearest control at or before it that starts a group up to the next one.
  void TurnOnRadio(size_t index) {
    size_t first = index;
    while (first > 0 && !controls[first].groupStart) --first;
    size_t last = index + 1;
    while (last < controls.size() && !controls[last].groupStart) ++last;
    for (size_t i = first; i < last; ++i) {
      if (controls[i].kind == ControlKind::kRadio) controls[i].state = i == index ? 1 : 0;
    }
  }
};

WinDialog::WinDialog(uint32_t templateId) : impl_(std::make_unique<Impl>()) {
  impl_->templateId = templateId;
}

WinDialog::~WinDialog() = default;

void WinSetDialogDriver(WinDialogDriver* driver) {
  State().driver = driver;
}
WinDialogDriver* WinGetDialogDriver() {
  return State().driver;
}
const std::vector<DialogRun>& WinDialogLog() {
  return State().log;
}
void WinClearDialogLog() {
  State().log.clear();
}

int32_t WinDialog::DoModal() {
  Impl& d = *impl_;
  if (d.running) {
    d.Say("DoModal while the dialog is already open");
    return -1;
  }
  const DialogTemplate* tmpl = zvwin_detail::FindCurrentDialogTemplate(d.templateId);
  if (tmpl == nullptr) {
    d.Say("no template in the resource module");
    DialogRun run;
    run.templateId = d.templateId;
    run.result = -1;
    State().log.push_back(run);
    return -1;
  }

  Impl::RunGuard guard(d, *this);
  d.caption = tmpl->caption;
  d.controls.clear();
  for (const ControlTemplate& t : tmpl->controls) {
    Control c;
    c.id = t.id;
    c.kind = t.kind;
    c.text = t.text;
    c.groupStart = t.groupStart;
    c.enabled = !t.disabled;
    d.controls.push_back(std::move(c));
  }
  d.window = WinCreateWindow("#32770");
  WinSetWindowText(d.window, d.caption);
  WinSetActiveWindow(d.window);
  d.running = true;
  d.result.reset();
  auto firstFocus = [&d] {
    d.focus = 0;
    for (const Control& c : d.controls) {
      if (c.enabled && TakesFocus(c.kind)) {
        d.focus = c.id;
        break;
      }
    }
  };
  firstFocus();

  WinDialogDriver* driver = State().driver;
  if (driver != nullptr) driver->DialogOpened(*this);
  // True asks for the focus on the first control; false says the dialog
  // placed it itself.
  if (OnInitDialog()) firstFocus();

  DialogRun run;
  run.templateId = d.templateId;
  while (!d.result) {
    if (run.actions == kMaxActionsPerDialog) {
      d.Say("%d actions without an end; cancelled", kMaxActionsPerDialog);
      EndDialog(kIdCancel);
      break;
    }
    driver = State().driver;
    std::optional<DialogAction> action =
        driver != nullptr ? driver->NextAction(*this) : std::nullopt;
    if (!action) {
      OnCancel();
      if (!d.result) EndDialog(kIdCancel);
      break;
    }
    ++run.actions;
    if (!d.Perform(*this, *action)) ++run.refused;
  }

  run.caption = Caption();
  run.result = *d.result;
  for (const Control& c : d.controls) {
    if (c.kind == ControlKind::kEdit || c.kind == ControlKind::kMultiLineEdit) {
      run.finalTexts.emplace_back(c.id, c.text);
    }
  }
  guard.Closed();
  driver = State().driver;
  if (driver != nullptr) driver->DialogClosed(*this, run.result);
  State().log.push_back(run);
  return run.result;
}

bool WinDialog::Impl::Perform(WinDialog& dialog, const DialogAction& action) {
  Control* c = Find(action.control);
  if (c == nullptr) {
    Say("control %d does not exist", action.control);
    return false;
  }
  if (!c->enabled) {
    Say("control %d is disabled", action.control);
    return false;
  }
  const int32_t id = c->id;
  auto wrongKind = [&](const char* what) {
    Say("cannot %s control %d, %s", what, id, KindName(c->kind));
    return false;
  };
  switch (action.kind) {
    case DialogAction::Kind::kSetText:
      if (!IsEdit(c->kind)) return wrongKind("type into");
      c->text = action.text;
      c->selStart = c->selEnd = TextLength(c->text);
      focus = id;
      dialog.OnCommand(id, kEnChange);
      return true;
    case DialogAction::Kind::kCheck:
      if (c->kind != ControlKind::kCheckBox) return wrongKind("check");
      if (action.value != 0 && action.value != 1) {
        Say("check box %d takes 0 or 1, not %d", id, action.value);
        return false;
      }
      c->state = action.value;
      focus = id;
      dialog.OnCommand(id, kBnClicked);
      return true;
    case DialogAction::Kind::kSelect:
      if (c->kind == ControlKind::kRadio) {
        TurnOnRadio(static_cast<size_t>(c - controls.data()));
        focus = id;
        dialog.OnCommand(id, kBnClicked);
        return true;
      }
      [[fallthrough]];
    case DialogAction::Kind::kDoubleClick: {
      const bool twice = action.kind == DialogAction::Kind::kDoubleClick;
      if (twice ? c->kind != ControlKind::kListBox : !IsList(c->kind)) {
        return wrongKind(twice ? "double click" : "select in");
      }
      if (action.value < 0 || action.value >= static_cast<int32_t>(c->entries.size())) {
        Say("list %d has %zu entries; there is no entry %d", id, c->entries.size(), action.value);
        return false;
      }
      c->curSel = action.value;
      if (c->kind == ControlKind::kComboBox) {
        c->text = c->entries[static_cast<size_t>(action.value)];
        c->selStart = 0;
        c->selEnd = TextLength(c->text);
      }
      focus = id;
      dialog.OnCommand(id, twice ? kLbnDblClk : kLbnSelChange);
      return true;
    }
    case DialogAction::Kind::kPress:
      if (!IsButton(c->kind)) return wrongKind("press");
      focus = id;
      if (id == kIdOk) {
        dialog.OnOK();
      } else if (id == kIdCancel) {
        dialog.OnCancel();
      } else {
        dialog.OnCommand(id, kBnClicked);
      }
      return true;
    case DialogAction::Kind::kSetSelection: {
      if (!IsEdit(c->kind)) return wrongKind("select text in");
      const int32_t length = TextLength(c->text);
      int32_t start = action.value;
      int32_t end = action.value2 == -1 ? length : action.value2;
      if (start > end) std::swap(start, end);
      if (start < 0 || end > length) {
        Say("selection %d to %d is outside the %d characters of control %d", action.value,
            action.value2, length, id);
        return false;
      }
      c->selStart = start;
      c->selEnd = end;
      focus = id;
      return true;
    }
  }
  Say("unknown action for control %d", id);
  return false;
}

void WinDialog::EndDialog(int32_t result) {
  if (impl_->running && !impl_->result) impl_->result = result;
}

uint32_t WinDialog::templateId() const {
  return impl_->templateId;
}
WindowRef WinDialog::window() const {
  return impl_->window;
}

std::string WinDialog::Caption() const {
  return impl_->window != 0 ? WinGetWindowText(impl_->window) : impl_->caption;
}

void WinDialog::SetCaption(std::string_view caption) {
  impl_->caption = caption;
  if (impl_->window != 0) WinSetWindowText(impl_->window, caption);
}

bool WinDialog::HasControl(int32_t id) const {
  return impl_->Find(id) != nullptr;
}

ControlKind WinDialog::KindOf(int32_t id) const {
  const Control* c = impl_->For(id, nullptr, "KindOf");
  return c != nullptr ? c->kind : ControlKind::kStatic;
}

std::string WinDialog::GetItemText(int32_t id) const {
  const Control* c = impl_->For(id, nullptr, "GetItemText");
  return c != nullptr ? c->text : std::string();
}

void WinDialog::SetItemText(int32_t id, std::string_view text) {
  if (Control* c = impl_->For(id, nullptr, "SetItemText")) {
    c->text = text;
    c->selStart = c->selEnd = 0;  // as an edit control puts the caret at the start
  }
}

int32_t WinDialog::IsChecked(int32_t id) const {
  const Control* c = impl_->For(id, IsCheckable, "IsChecked");
  return c != nullptr ? c->state : 0;
}

void WinDialog::CheckButton(int32_t id, int32_t state) {
  if (Control* c = impl_->For(id, IsCheckable, "CheckButton")) c->state = state;
}

void WinDialog::CheckRadio(int32_t first, int32_t last, int32_t id) {
  if (impl_->For(id, IsCheckable, "CheckRadio") == nullptr) return;
  for (Control& c : impl_->controls) {
    if (c.id >= first && c.id <= last && IsCheckable(c.kind)) c.state = c.id == id ? 1 : 0;
  }
}

void WinDialog::EnableItem(int32_t id, bool enabled) {
  if (Control* c = impl_->For(id, nullptr, "EnableItem")) {
    c->enabled = enabled;
    // A control that loses its input loses the focus too.
    if (!enabled && impl_->focus == id) impl_->focus = 0;
  }
}

bool WinDialog::IsEnabled(int32_t id) const {
  const Control* c = impl_->For(id, nullptr, "IsEnabled");
  return c != nullptr && c->enabled;
}

void WinDialog::SetFocusItem(int32_t id) {
  if (impl_->For(id, nullptr, "SetFocusItem") != nullptr) impl_->focus = id;
}

int32_t WinDialog::FocusItem() const {
  return impl_->focus;
}

static bool HoldsImage(ControlKind kind) {
  return IsButton(kind) || kind == ControlKind::kStatic;
}

void WinDialog::SetItemImage(int32_t id, uint32_t image) {
  if (Control* c = impl_->For(id, HoldsImage, "SetItemImage")) c->image = image;
}

uint32_t WinDialog::ItemImage(int32_t id) const {
  const Control* c = impl_->For(id, HoldsImage, "ItemImage");
  return c != nullptr ? c->image : 0;
}

void WinDialog::GetSelection(int32_t id, int32_t* start, int32_t* end) const {
  const Control* c = impl_->For(id, IsEdit, "GetSelection");
  if (start != nullptr) *start = c != nullptr ? c->selStart : 0;
  if (end != nullptr) *end = c != nullptr ? c->selEnd : 0;
}

void WinDialog::SetSelection(int32_t id, int32_t start, int32_t end) {
  Control* c = impl_->For(id, IsEdit, "SetSelection");
  if (c == nullptr) return;
  // As an edit control does: -1 for the end runs to the end of the text, and
  // positions are kept within the text.
  const int32_t length = TextLength(c->text);
  if (end == -1) end = length;
  start = std::clamp(start, 0, length);
  end = std::clamp(end, 0, length);
  if (start > end) std::swap(start, end);
  c->selStart = start;
  c->selEnd = end;
}

void WinDialog::ReplaceSelection(int32_t id, std::string_view text) {
  Control* c = impl_->For(id, IsEdit, "ReplaceSelection");
  if (c == nullptr) return;
  const size_t start = static_cast<size_t>(c->selStart);
  c->text.replace(start, static_cast<size_t>(c->selEnd - c->selStart), text);
  c->selStart = c->selEnd = static_cast<int32_t>(start + text.size());
}

int32_t WinDialog::LineFromChar(int32_t id, int32_t position) const {
  const Control* c = impl_->For(id, IsEdit, "LineFromChar");
  if (c == nullptr) return 0;
  if (position < 0) position = c->selStart;  // -1: the line of the caret
  const size_t end = std::min(static_cast<size_t>(position), c->text.size());
  return static_cast<int32_t>(std::count(c->text.begin(), c->text.begin() + end, '\n'));
}

void WinDialog::ScrollToLine(int32_t id, int32_t firstVisibleLine) {
  Control* c = impl_->For(id, IsEdit, "ScrollToLine");
  if (c == nullptr) return;
  const int32_t lines = 1 + static_cast<int32_t>(std::count(c->text.begin(), c->text.end(), '\n'));
  c->firstVisibleLine = std::clamp(firstVisibleLine, 0, lines - 1);
}

int32_t WinDialog::FirstVisibleLine(int32_t id) const {
  const Control* c = impl_->For(id, IsEdit, "FirstVisibleLine");
  return c != nullptr ? c->firstVisibleLine : 0;
}

void WinDialog::ListReset(int32_t id) {
  if (Control* c = impl_->For(id, IsList, "ListReset")) {
    c->entries.clear();
    c->curSel = -1;
  }
}

int32_t WinDialog::ListAdd(int32_t id, std::string_view text) {
  Control* c = impl_->For(id, IsList, "ListAdd");
  if (c == nullptr) return -1;
  c->entries.emplace_back(text);
  return static_cast<int32_t>(c->entries.size()) - 1;
}

int32_t WinDialog::ListCount(int32_t id) const {
  const Control* c = impl_->For(id, IsList, "ListCount");
  return c != nullptr ? static_cast<int32_t>(c->entries.size()) : 0;
}

std::string WinDialog::ListText(int32_t id, int32_t index) const {
  const Control* c = impl_->For(id, IsList, "ListText");
  if (c == nullptr) return {};
  if (index < 0 || index >= static_cast<int32_t>(c->entries.size())) {
    impl_->Say("list %d has no entry %d", id, index);
    return {};
  }
  return c->entries[static_cast<size_t>(index)];
}

int32_t WinDialog::ListCurSel(int32_t id) const {
  const Control* c = impl_->For(id, IsList, "ListCurSel");
  return c != nullptr ? c->curSel : -1;
}

void WinDialog::ListSetCurSel(int32_t id, int32_t index) {
  Control* c = impl_->For(id, IsList, "ListSetCurSel");
  if (c == nullptr) return;
  if (index < -1 || index >= static_cast<int32_t>(c->entries.size())) {
    impl_->Say("list %d has no entry %d; nothing is selected", id, index);
    index = -1;
  }
  c->curSel = index;
  if (c->kind == ControlKind::kComboBox && index >= 0) {
    c->text = c->entries[static_cast<size_t>(index)];
  }
}
