#include "session_script.h"

#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <sstream>

#include "analysis_run.h"
#include "host_start.h"
#include "pane_output.h"
#include "zivara_exit.h"
#include "zvgrid/sheet.h"

namespace zivara {

bool SplitSessionLine(const std::string& line, std::vector<std::string>* words,
                      std::string* error) {
  words->clear();
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) ++i;
    if (i >= line.size() || line[i] == '#') break;
    std::string word;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') {
      if (line[i] != '"') {
        word += line[i++];
        continue;
      }
      ++i;  // opening quote
      bool closed = false;
      while (i < line.size()) {
        char c = line[i++];
        if (c == '"') {
          closed = true;
          break;
        }
        if (c == '\\' && i < line.size()) {
          char e = line[i++];
          switch (e) {
            case 'n':
              word += '\n';
              break;
            case 'r':
              word += '\r';
              break;
            case 't':
              word += '\t';
              break;
            default:
              word += e;
              break;
          }
          continue;
        }
        word += c;
      }
      if (!closed) {
        if (error) *error = "a quote is not closed";
        return false;
      }
    }
    words->push_back(std::move(word));
  }
  return true;
}

namespace {

std::optional<int32_t> Whole(const std::string& text) {
  int32_t value = 0;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || ptr != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

bool StartsWith(const std::string& text, std::string_view prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

// A line that cannot be run: found when the file is read, before anything runs.
struct Malformed {
  std::string why;
};

// A call that could not be made in the session's state (no analysis in the
// Slot, a pane the procedure lacks, a sheet that cannot be saved): reported
// with its line as a failure, and the session goes on.
struct Failed {
  std::string why;
};

// Lines are read twice: once to check them all (`checking`: arguments are
// parsed and nothing is called), then to run them.
class Session {
 public:
  Session(zvhost::Host& host, std::string folder, std::string outFolder, std::ostream& out,
          std::ostream& err)
      : host_(host),
        folder_(std::move(folder)),
        outFolder_(std::move(outFolder)),
        out_(out),
        err_(err) {}

  // Runs one line, or only checks it; throws Malformed.
  void Run(const std::vector<std::string>& words, const std::string& where, bool checking);
  int failures() const { return failures_; }
  void NoteMessage(const MessageBoxCall& call) { messages_.push_back(call.text); }

 private:
  void Call(const std::vector<std::string>& w);
  void Expect(const std::vector<std::string>& w);
  void Check(bool held, const std::string& what, const std::string& got);
  std::vector<zvhost::UserStep> Steps(const std::vector<std::string>& w, size_t from,
                                      const zvhost::FamilySpec* variables);
  zvhost::Analysis& Current();
  int32_t Number(const std::string& text, const char* what);
  int32_t Pane(const std::string& text, bool graphOnly = false);
  void RequirePane(int32_t item);
  std::string Path(const std::string& text, bool forWriting) const;
  int32_t BindingIndex(const std::string& text);
  void TakeProblems();
  void ReportNewFaults();

  zvhost::Host& host_;
  std::string folder_;
  std::string outFolder_;
  std::ostream& out_;
  std::ostream& err_;
  std::string where_;
  bool checking_ = false;
  int failures_ = 0;
  size_t faultsSeen_ = 0;
  int32_t current_ = -1;      // the Slot that commands address
  int32_t pendingSlot_ = -1;  // the Slot of the last Dialog of a new analysis
  int64_t lastResult_ = 0;
  std::vector<std::string> messages_;
  size_t messageMark_ = 0;  // messages from here on belong to the last call
};

int32_t Session::Number(const std::string& text, const char* what) {
  std::optional<int32_t> n = Whole(text);
  if (!n) throw Malformed{std::string(what) + " must be a whole number, not \"" + text + "\""};
  return *n;
}

int32_t Session::Pane(const std::string& text, bool graphOnly) {
  const int32_t item = Number(text, "a pane");
  const int32_t first = graphOnly ? 8 : 1;
  if (item < first || item > 14) {
    throw Malformed{"pane " + text + " is out of range: panes are " + std::to_string(first) +
                    " to 14" + (graphOnly ? " (graph panes)" : "")};
  }
  return item;
}

zvhost::Analysis& Session::Current() {
  zvhost::Analysis* a = host_.AnalysisOf(current_);
  if (a == nullptr) {
    throw Failed{current_ < 0 ? std::string("no analysis is open yet")
                              : "no analysis is open in slot " + std::to_string(current_)};
  }
  return *a;
}

void Session::RequirePane(int32_t item) {
  const zvhost::FamilySpec& family = *Current().family;
  if (!zvhost::HasItem(family, item)) {
    throw Failed{std::string(family.name) + " has no pane " + std::to_string(item) +
                 "; its panes are " + PaneList(family)};
  }
}

std::string Session::Path(const std::string& text, bool forWriting) const {
  if (StartsWith(text, "@data/")) return DataFolder() + "/" + text.substr(6);
  if (StartsWith(text, "@out/")) return outFolder_ + "/" + text.substr(5);
  if (!text.empty() && text[0] == '/') return text;
  return (forWriting ? outFolder_ : folder_) + "/" + text;
}

int32_t Session::BindingIndex(const std::string& text) {
  if (text == "select") return zv::kSelectBinding;
  if (text == "hosttext") return zv::kHostTextBinding;
  if (text == "hostnumber") return zv::kHostNumberBinding;
  int32_t i = Number(text, "a binding");
  if (i < 0 || i >= zv::kBindingCount) throw Malformed{"binding " + text + " is out of range"};
  return i;
}

void Session::Check(bool held, const std::string& what, const std::string& got) {
  if (held) return;
  ++failures_;
  err_ << where_ << ": expected " << what << ", got " << got << "\n";
}

void Session::TakeProblems() {
  for (const std::string& p : host_.user().problems()) {
    ++failures_;
    err_ << where_ << ": the scripted user could not act: " << p << "\n";
  }
  host_.user().ClearProblems();
  host_.user().Clear();
}

void Session::ReportNewFaults() {
  const std::vector<std::string>& faults = host_.faults();
  for (; faultsSeen_ < faults.size(); ++faultsSeen_) {
    ++failures_;
    err_ << where_ << ": internal fault: " << faults[faultsSeen_] << "\n";
  }
}

std::vector<zvhost::UserStep> Session::Steps(const std::vector<std::string>& w, size_t from,
                                             const zvhost::FamilySpec* variables) {
  std::vector<zvhost::UserStep> steps;
  bool ended = false;
  for (size_t i = from; i < w.size(); ++i) {
    const std::string& word = w[i];
    if (word == "ok" || word == "cancel") {
      steps.push_back(zvhost::UserStep::Press(word == "ok" ? kIdOk : kIdCancel));
      ended = true;
      continue;
    }
    size_t eq = word.find('=');
    if (eq == std::string::npos) throw Malformed{"\"" + word + "\" is not a dialog step"};
    std::string key = word.substr(0, eq);
    std::string value = word.substr(eq + 1);
    if (key == "press") {
      int32_t control = Number(value, "press");
      steps.push_back(zvhost::UserStep::Press(control));
      if (control == kIdOk || control == kIdCancel) ended = true;
    } else if (key == "dblclick" || key == "caret") {
      std::vector<int32_t> parts;
      std::stringstream in(value);
      for (std::string part; std::getline(in, part, ':');) {
        parts.push_back(Number(part, key.c_str()));
      }
      if (key == "dblclick" && parts.size() == 2) {
        steps.push_back(zvhost::UserStep::DoubleClick(parts[0], parts[1]));
      } else if (key == "caret" && (parts.size() == 2 || parts.size() == 3)) {
        int32_t end = parts.size() == 3 ? parts[2] : parts[1];
        steps.push_back(
            zvhost::UserStep::Action(DialogAction::SetSelection(parts[0], parts[1], end)));
      } else {
        throw Malformed{"\"" + word +
                        "\" takes CONTROL:ENTRY (dblclick) or CONTROL:START[:END] (caret)"};
      }
    } else if (key == "select") {
      if (variables == nullptr || variables->selectControl == 0) {
        throw Malformed{"this dialog has no select field"};
      }
      steps.push_back(zvhost::UserStep::Set(variables->selectControl, value));
    } else if (key.size() > 1 && key[0] == 'v' && Whole(key.substr(1))) {
      if (variables == nullptr) throw Malformed{"variable fields belong to the variable dialog"};
      std::vector<int32_t> fields = VariableFieldControls(*variables);
      int32_t n = *Whole(key.substr(1));
      if (n < 1 || static_cast<size_t>(n) > fields.size()) {
        throw Malformed{std::string(variables->name) + " has no variable field " + key.substr(1)};
      }
      steps.push_back(zvhost::UserStep::Set(fields[static_cast<size_t>(n) - 1], value));
    } else if (!Whole(key) && !key.empty() && std::isalpha(static_cast<unsigned char>(key[0]))) {
      // A control by its name in the dialog template.
      steps.push_back(zvhost::UserStep::SetNamed(key, value));
    } else {
      steps.push_back(zvhost::UserStep::Set(Number(key, "a control"), value));
    }
  }
  if (!ended) steps.push_back(zvhost::UserStep::Ok());
  return steps;
}

void Session::Run(const std::vector<std::string>& w, const std::string& where, bool checking) {
  where_ = where;
  checking_ = checking;
  try {
    if (w[0] == "expect") {
      Expect(w);
    } else {
      Call(w);
    }
  } catch (const Failed& f) {
    ++failures_;
    err_ << where_ << ": " << f.why << "\n";
  }
  if (!checking_) ReportNewFaults();
}

void Session::Call(const std::vector<std::string>& w) {
  const std::string& command = w[0];
  auto need = [&](size_t n, const char* form) {
    if (w.size() < n + 1) throw Malformed{"usage: " + std::string(form)};
    if (w.size() > n + 1) throw Malformed{"too many words; usage: " + std::string(form)};
  };
  if (!checking_) messageMark_ = messages_.size();

  if (command == "sheet") {
    if (w.size() != 2 && (w.size() != 4 || w[2] != "--na"))
      throw Malformed{"usage: sheet FILE [--na LIST]"};
    if (checking_) return;
    std::ostringstream why;
    const std::optional<std::string> codes =
        w.size() == 4 ? std::optional<std::string>(w[3]) : std::nullopt;
    if (!LoadSheet(Path(w[1], false), why, codes)) {
      std::string reason = why.str();
      if (StartsWith(reason, "zivara: ")) reason.erase(0, 8);
      while (!reason.empty() && reason.back() == '\n') reason.pop_back();
      throw Failed{reason};
    }
  } else if (command == "save") {
    need(1, "save FILE");
    if (checking_) return;
    std::string error;
    if (!zvgrid::SaveCsvFile(Path(w[1], true), &error)) {
      throw Failed{"cannot save the sheet as " + Path(w[1], true) + ": " + error};
    }
  } else if (command == "delete-column") {
    need(1, "delete-column NAME");
    if (checking_) return;
    bool found = false;
    for (const zvgrid::Column& c : zvgrid::Columns()) found = found || c.name == w[1];
    if (!found) throw Failed{"the sheet has no column \"" + w[1] + "\" to delete"};
    zvgrid::DeleteColumn(w[1]);
  } else if (command == "add-column") {
    need(2, "add-column NAME V1,V2,...");
    if (checking_) return;
    std::vector<std::string> cells;
    std::stringstream in(w[2]);
    for (std::string cell; std::getline(in, cell, ',');) cells.push_back(cell);
    std::vector<double> numbers;
    bool numeric = true;
    for (const std::string& cell : cells) {
      if (cell.empty()) {
        numbers.push_back(zvgrid::kMissing);
        continue;
      }
      double v = 0;
      auto [ptr, ec] = std::from_chars(cell.data(), cell.data() + cell.size(), v);
      numeric = numeric && ec == std::errc() && ptr == cell.data() + cell.size();
      numbers.push_back(v);
    }
    if (numeric) {
      zvgrid::AddNumericColumn(w[1], numbers);
    } else {
      zvgrid::AddTextColumn(w[1], cells);
    }
  } else if (command == "answer") {
    if (w.size() < 2) throw Malformed{"usage: answer yes|no|ok|cancel..."};
    std::vector<int32_t> answers;
    for (size_t i = 1; i < w.size(); ++i) {
      static const std::map<std::string, int32_t> kAnswers = {
          {"yes", kIdYes}, {"no", kIdNo}, {"ok", kIdOk}, {"cancel", kIdCancel}};
      auto it = kAnswers.find(w[i]);
      if (it == kAnswers.end()) throw Malformed{"\"" + w[i] + "\" is not yes, no, ok or cancel"};
      answers.push_back(it->second);
    }
    if (checking_) return;
    for (int32_t answer : answers) host_.QueueAnswer(answer);
  } else if (command == "expression") {
    need(1, "expression TEXT");
    if (checking_) return;
    host_.QueueExpression(w[1]);
  } else if (command == "slot") {
    need(1, "slot N");
    const int32_t slot = Number(w[1], "slot");
    if (slot < 0 || slot > 63) throw Malformed{"slot " + w[1] + " is out of range: 0 to 63"};
    if (checking_) return;
    current_ = slot;
    Current();
  } else if (command == "dialog") {
    if (w.size() < 2) throw Malformed{"usage: dialog FAMILY [reopen] STEP..."};
    const zvhost::FamilySpec* family = zvhost::FindFamily(w[1]);
    if (family == nullptr) throw Malformed{"unknown procedure \"" + w[1] + "\""};
    const bool reopen = w.size() > 2 && w[2] == "reopen";
    std::vector<zvhost::UserStep> steps = Steps(w, reopen ? 3 : 2, family);
    if (checking_) return;
    if (reopen && Current().family != family) {
      throw Failed{"the analysis in slot " + std::to_string(current_) + " is " +
                   Current().family->name + ", not " + family->name};
    }
    host_.user().Clear();
    host_.user().Queue(steps);
    int32_t slot = reopen ? current_ : host_.NewSlot();
    if (!reopen) pendingSlot_ = slot;
    lastResult_ = host_.Dialog(*family, slot, reopen);
    TakeProblems();
  } else if (command == "setup") {
    if (w.size() > 2 || (w.size() == 2 && w[1] != "reopen"))
      throw Malformed{"usage: setup [reopen]"};
    const bool reopen = w.size() == 2;
    if (checking_) return;
    if (reopen) Current();
    if (!reopen && pendingSlot_ < 0) throw Failed{"setup needs a dialog for a new analysis first"};
    int32_t slot = reopen ? current_ : pendingSlot_;
    lastResult_ = host_.Setup(slot, reopen) ? 1 : 0;
    if (!reopen && lastResult_ == 1) current_ = slot;
  } else if (command == "begin") {
    need(0, "begin");
    if (checking_) return;
    Current();
    lastResult_ = host_.Begin(current_);
  } else if (command == "item" || command == "redraw") {
    need(1, command == "item" ? "item N" : "redraw N (a graph pane, 8 to 14)");
    const int32_t item = Pane(w[1], command == "redraw");
    if (checking_) return;
    // Item may name a pane the procedure lacks (the module then writes
    // nothing); a redraw needs the pane's graph.
    if (command == "redraw") RequirePane(item);
    Current();
    lastResult_ =
        command == "item" ? host_.Item(current_, item) : host_.RedrawGraph(current_, item);
  } else if (command == "graph-rebuilds") {
    need(1, "graph-rebuilds N");
    const int32_t n = Number(w[1], "graph-rebuilds");
    if (checking_) return;
    host_.record().graphRebuilds = n;
  } else if (command == "paint") {
    need(0, "paint");
    if (checking_) return;
    Current();
    host_.ShowStalePanes(current_);
  } else if (command == "opts") {
    if (w.size() < 2) throw Malformed{"usage: opts N STEP..."};
    const int32_t item = Pane(w[1]);
    std::vector<zvhost::UserStep> steps = Steps(w, 2, nullptr);
    if (checking_) return;
    Current();
    host_.user().Clear();
    host_.user().Queue(steps);
    lastResult_ = host_.Opts(current_, item);
    TakeProblems();
  } else if (command == "redo") {
    need(0, "redo");
    if (checking_) return;
    Current();
    lastResult_ = host_.RedoItem1(current_);
  } else if (command == "vsave") {
    std::vector<zvhost::UserStep> steps = Steps(w, 1, nullptr);
    if (checking_) return;
    Current();
    host_.user().Clear();
    host_.user().Queue(steps);
    host_.Vsave(current_);
    TakeProblems();
  } else if (command == "beginagain") {
    need(0, "beginagain");
    if (checking_) return;
    zvhost::Analysis& analysis = Current();
    lastResult_ = host_.BeginAgain(current_);
    if (lastResult_ == 0) {
      // Not a failure by itself (a check may expect it), but never silent:
      // the panes still show the results from before.
      err_ << where_ << ": note: " << analysis.family->name << "BeginAgain failed (status "
           << analysis.state->status << "); the panes still show the earlier results\n";
    }
  } else if (command == "reload") {
    need(0, "reload");
    if (checking_) return;
    Current();
    lastResult_ = host_.Reload(current_) ? 1 : 0;
  } else if (command == "close") {
    need(0, "close");
    if (checking_) return;
    Current();
    host_.Close(current_);
  } else if (command == "added-text") {
    need(2, "added-text TEXT FLAG");
    const int32_t flag = Number(w[2], "flag");
    if (checking_) return;
    host_.SetAddedText(w[1], flag);
  } else if (command == "host-binding") {
    need(2, "host-binding text|number EXPRESSION");
    if (w[1] != "text" && w[1] != "number") throw Malformed{"host-binding takes text or number"};
    if (checking_) return;
    Current();
    host_.SetHostBinding(current_, w[1] == "text" ? 0 : 1, w[2]);
  } else if (command == "print" || command == "interpret") {
    need(1, command == "print" ? "print N" : "interpret N");
    const int32_t item = Pane(w[1]);
    if (checking_) return;
    RequirePane(item);
    out_ << (command == "print" ? PaneOutput(host_, current_, item)
                                : UnixLines(host_.Interpret(current_, item)));
  } else {
    throw Malformed{"unknown command \"" + command + "\""};
  }
}

void Session::Expect(const std::vector<std::string>& w) {
  if (w.size() < 2) throw Malformed{"expect what?"};
  const std::string& what = w[1];
  auto need = [&](size_t n, const char* form) {
    if (w.size() < n + 2) throw Malformed{"usage: expect " + std::string(form)};
    if (w.size() > n + 2) throw Malformed{"too many words; usage: expect " + std::string(form)};
  };
  // Checks a number against the expected one, which is parsed when the
  // line is read.
  auto number = [&](const std::function<int64_t()>& got, const std::string& text,
                    const std::string& name) {
    const int32_t want = Number(text, "the expected value");
    if (checking_) return;
    const int64_t value = got();
    Check(value == want, name + " " + text, std::to_string(value));
  };

  if (what == "result") {
    need(1, "result N");
    number([&] { return lastResult_; }, w[2], "result");
  } else if (what == "status") {
    need(1, "status N");
    number([&] { return Current().state->status; }, w[2], "status");
  } else if (what == "state") {
    need(2, "state FIELD N");
    static const std::map<std::string, int32_t zv::ProcedureState::*> kFields = {
        {"begun", &zv::ProcedureState::begun},
        {"rowCount", &zv::ProcedureState::rowCount},
        {"status", &zv::ProcedureState::status},
        {"orderReady", &zv::ProcedureState::orderReady},
        {"keepScales", &zv::ProcedureState::keepScales},
        {"firstListCount", &zv::ProcedureState::firstListCount},
        {"secondListCount", &zv::ProcedureState::secondListCount},
        {"procedureCode", &zv::ProcedureState::procedureCode},
        {"rowsDiffer", &zv::ProcedureState::rowsDiffer},
        {"extraStale", &zv::ProcedureState::extraStale},
        {"textOptionsMask", &zv::ProcedureState::textOptionsMask},
        {"graphOptionsMask", &zv::ProcedureState::graphOptionsMask},
        {"slot", &zv::ProcedureState::slot},
        {"hostWord1", &zv::ProcedureState::hostWord1},
        {"hostWord2", &zv::ProcedureState::hostWord2},
    };
    auto it = kFields.find(w[2]);
    if (it == kFields.end()) throw Malformed{"the state has no field \"" + w[2] + "\" to check"};
    number([&] { return Current().state.get()->*(it->second); }, w[3], "state " + w[2]);
  } else if (what == "stale") {
    need(2, "stale ITEM 0|1");
    const int32_t item = Pane(w[2]);
    number([&] { return Current().state->paneStale[item - 1]; }, w[3], "paneStale[" + w[2] + "]");
  } else if (what == "host") {
    need(2, "host FIELD N");
    zv::HostRecord& r = host_.record();
    static const std::map<std::string, int32_t zv::HostRecord::*> kRecordFields = {
        {"nextSlot", &zv::HostRecord::nextSlot},
        {"rowCount", &zv::HostRecord::rowCount},
        {"rowsDiffer", &zv::HostRecord::rowsDiffer},
        {"begunCount", &zv::HostRecord::begunCount},
        {"nextGraphId", &zv::HostRecord::nextGraphId},
        {"currentSlot", &zv::HostRecord::currentSlot},
        {"graphKeepId", &zv::HostRecord::graphKeepId},
        {"graphRebuilds", &zv::HostRecord::graphRebuilds},
    };
    const std::map<std::string, std::function<int64_t()>> kCounts = {
        {"helpId", [&] { return current_ >= 0 && current_ < 64 ? r.helpIds[current_] : 0; }},
        {"helpContext", [&] { return host_.help().helpContext; }},
        {"sheetChanged", [&] { return host_.sheet().sheetChanged; }},
        {"modified", [&] { return host_.modifiedCalls(); }},
        {"refreshed", [&] { return host_.refreshCalls(); }},
        {"dropped", [&] { return host_.dropCalls(); }},
        {"expressionEdits", [&] { return host_.expressionEdits(); }},
        {"waitCursor", [&] { return host_.waitCursorLevel(); }},
        {"abandoned", [&] { return static_cast<int64_t>(host_.abandonedCalls().size()); }},
    };
    const std::string& f = w[2];
    std::function<int64_t()> got;
    if (auto it = kRecordFields.find(f); it != kRecordFields.end()) {
      got = [&r, field = it->second] { return r.*field; };
    } else if (auto count = kCounts.find(f); count != kCounts.end()) {
      got = count->second;
    } else {
      throw Malformed{"the Host has no field \"" + f + "\" to check"};
    }
    number(got, w[3], "host " + f);
  } else if (what == "binding") {
    need(2, "binding I TEXT");
    const int32_t index = BindingIndex(w[2]);
    if (checking_) return;
    std::string got(zv::CountedText(Current().state->bindings[index].expression));
    Check(got == w[3], "binding " + w[2] + " \"" + w[3] + "\"", "\"" + got + "\"");
  } else if (what == "count" || what == "data") {
    need(2, what == "count" ? "count I N" : "data I 0|1");
    const int32_t index = BindingIndex(w[2]);
    number(
        [&]() -> int64_t {
          const zv::VariableBinding& b = Current().state->bindings[index];
          return what == "count" ? b.count : (b.data != 0 ? 1 : 0);
        },
        w[3], what + " of binding " + w[2]);
  } else if (what == "pane" || what == "interpret") {
    if (w.size() < 4)
      throw Malformed{"usage: expect " + what + " N contains|lacks|equals|line|empty ..."};
    const int32_t item = Pane(w[2]);
    const std::string& test = w[3];
    const std::string name = what + " " + w[2];
    const size_t words = test == "empty" ? 4 : test == "line" ? 6 : 5;
    if (test != "empty" && test != "contains" && test != "lacks" && test != "equals" &&
        test != "line") {
      throw Malformed{"expect " + what + " takes contains, lacks, equals, line or empty"};
    }
    if (w.size() != words) {
      throw Malformed{"usage: expect " + what + " N " + test +
                      (test == "line"    ? " K TEXT"
                       : test == "empty" ? ""
                                         : " TEXT")};
    }
    std::string golden;
    if (test == "equals") {
      std::ifstream in(Path(w[4], false), std::ios::binary);
      if (!in) throw Malformed{"cannot read " + Path(w[4], false)};
      golden.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    const int32_t k = test == "line" ? Number(w[4], "line") : 0;
    if (checking_) return;
    Current();
    const std::string text = what == "pane" ? PaneOutput(host_, current_, item)
                                            : UnixLines(host_.Interpret(current_, item));
    if (test == "empty") {
      Check(text.empty(), name + " empty", "\"" + text + "\"");
    } else if (test == "contains" || test == "lacks") {
      bool found = text.find(w[4]) != std::string::npos;
      Check(found == (test == "contains"), name + " " + test + " \"" + w[4] + "\"", "\n" + text);
    } else if (test == "equals") {
      Check(text == golden, name + " equal to " + w[4], "\n" + text);
    } else {
      std::stringstream in(text);
      std::string line;
      for (int32_t i = 0; i < k && std::getline(in, line); ++i) {
      }
      Check(line == w[5], name + " line " + w[4] + " \"" + w[5] + "\"", "\"" + line + "\"");
    }
  } else if (what == "message") {
    need(1, "message TEXT");
    if (checking_) return;
    bool found = false;
    std::string seen;
    for (size_t i = messageMark_; i < messages_.size(); ++i) {
      found = found || messages_[i].find(w[2]) != std::string::npos;
      seen += " \"" + messages_[i] + "\"";
    }
    Check(found, "a message with \"" + w[2] + "\"", seen.empty() ? "no message" : seen);
  } else if (what == "messages") {
    need(1, "messages N");
    number([&] { return static_cast<int64_t>(messages_.size() - messageMark_); }, w[2], "messages");
  } else if (what == "aborted" || what == "completed") {
    need(0, what.c_str());
    if (checking_) return;
    bool abandoned = host_.lastCallAbandoned();
    Check(abandoned == (what == "aborted"), "the last call " + what,
          abandoned ? "aborted" : "completed");
  } else if (what == "locks") {
    need(1, "locks N");
    number([&] { return static_cast<int64_t>(WinLockedBlockCount()); }, w[2], "locked blocks");
  } else if (what == "sheet") {
    need(2, "sheet columns|rows N, or sheet has|lacks NAME");
    const std::string& test = w[2];
    if (test == "columns") {
      number([&] { return static_cast<int64_t>(zvgrid::Columns().size()); }, w[3], "sheet columns");
    } else if (test == "rows") {
      number([&] { return static_cast<int64_t>(zvgrid::RowCount()); }, w[3], "sheet rows");
    } else if (test == "has" || test == "lacks") {
      if (checking_) return;
      bool found = false;
      for (const zvgrid::Column& c : zvgrid::Columns()) found = found || c.name == w[3];
      Check(found == (test == "has"), "the sheet " + test + " " + w[3],
            found ? "it has" : "it lacks");
    } else {
      throw Malformed{"expect sheet takes columns, rows, has or lacks"};
    }
  } else {
    throw Malformed{"unknown check \"" + what + "\""};
  }
}

}  // namespace

int SessionCommand(const std::string& file, const std::string& outFolder, std::ostream& out,
                   std::ostream& err) {
  std::ifstream in(file);
  if (!in) {
    err << "zivara: cannot read the session " << file << "\n";
    return kExitRefused;
  }
  std::filesystem::path folder = std::filesystem::path(file).parent_path();
  std::string out_folder = outFolder.empty() ? "." : outFolder;
  std::error_code ec;
  std::filesystem::create_directories(out_folder, ec);

  std::unique_ptr<zvhost::Host> host = StartHost(err, err);
  if (!host) return kExitFault;
  Session session(*host, folder.empty() ? "." : folder.string(), out_folder, out, err);
  host->SetMessageObserver([&session, &err](const MessageBoxCall& call) {
    err << call.caption << ": " << call.text << "\n";
    session.NoteMessage(call);
  });

  // Every line is checked before anything runs: a malformed line anywhere
  // stops the session at once, each reported with its line.
  std::vector<std::pair<std::string, std::vector<std::string>>> lines;
  int malformed = 0;
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    const std::string where = file + ":" + std::to_string(number);
    std::vector<std::string> words;
    std::string error;
    if (!SplitSessionLine(line, &words, &error)) {
      err << where << ": " << error << "\n";
      ++malformed;
      continue;
    }
    if (words.empty()) continue;
    try {
      session.Run(words, where, true);
    } catch (const Malformed& m) {
      err << where << ": " << m.why << "\n";
      ++malformed;
      continue;
    }
    lines.emplace_back(where, std::move(words));
  }
  if (malformed > 0) return kExitRefused;
  for (const auto& [where, words] : lines) {
    try {
      session.Run(words, where, false);
    } catch (const Malformed& m) {
      // What the check cannot see before the run (a file gone since).
      err << where << ": " << m.why << "\n";
      return kExitRefused;
    }
  }
  out.flush();
  return session.failures() == 0 ? kExitRan : kExitFault;
}

}  // namespace zivara
