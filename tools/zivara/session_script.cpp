#include "session_script.h"

#include <charconv>
#include <filesystem>
#include <fstream>
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
            case 'n': word += '\n'; break;
            case 'r': word += '\r'; break;
            case 't': word += '\t'; break;
            default: word += e; break;
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

// A line that cannot be run: the session stops.
struct Malformed {
  std::string why;
};

class Session {
 public:
  Session(zvhost::Host& host, std::string folder, std::string outFolder, std::ostream& out,
          std::ostream& err)
      : host_(host),
        folder_(std::move(folder)),
        outFolder_(std::move(outFolder)),
        out_(out),
        err_(err) {}

  // Runs one line; throws Malformed.
  void Run(const std::vector<std::string>& words, const std::string& where);
  int failures() const { return failures_; }
  void NoteMessage(const MessageBoxCall& call) { messages_.push_back(call.text); }

 private:
  void Expect(const std::vector<std::string>& w);
  void Check(bool held, const std::string& what, const std::string& got);
  std::vector<zvhost::UserStep> Steps(const std::vector<std::string>& w, size_t from,
                                      const zvhost::FamilySpec* variables);
  zvhost::Analysis& Current();
  int32_t Number(const std::string& text, const char* what);
  std::string Path(const std::string& text, bool forWriting) const;
  int32_t BindingIndex(const std::string& text);
  void TakeProblems();

  zvhost::Host& host_;
  std::string folder_;
  std::string outFolder_;
  std::ostream& out_;
  std::ostream& err_;
  std::string where_;
  int failures_ = 0;
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

zvhost::Analysis& Session::Current() {
  zvhost::Analysis* a = host_.AnalysisOf(current_);
  if (a == nullptr) throw Malformed{"no analysis is open in slot " + std::to_string(current_)};
  return *a;
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
      for (std::string part; std::getline(in, part, ':');) parts.push_back(Number(part, key.c_str()));
      if (key == "dblclick" && parts.size() == 2) {
        steps.push_back(zvhost::UserStep::DoubleClick(parts[0], parts[1]));
      } else if (key == "caret" && (parts.size() == 2 || parts.size() == 3)) {
        int32_t end = parts.size() == 3 ? parts[2] : parts[1];
        steps.push_back(
            zvhost::UserStep::Action(DialogAction::SetSelection(parts[0], parts[1], end)));
      } else {
        throw Malformed{"\"" + word + "\" takes CONTROL:ENTRY (dblclick) or CONTROL:START[:END] (caret)"};
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
    } else {
      steps.push_back(zvhost::UserStep::Set(Number(key, "a control"), value));
    }
  }
  if (!ended) steps.push_back(zvhost::UserStep::Ok());
  return steps;
}

void Session::Run(const std::vector<std::string>& w, const std::string& where) {
  where_ = where;
  const std::string& command = w[0];
  auto need = [&](size_t n, const char* form) {
    if (w.size() < n + 1) throw Malformed{"usage: " + std::string(form)};
  };
  if (command == "expect") {
    Expect(w);
    return;
  }
  messageMark_ = messages_.size();

  if (command == "sheet") {
    need(1, "sheet FILE [--na LIST]");
    if (w.size() != 2 && (w.size() != 4 || w[2] != "--na"))
      throw Malformed{"usage: sheet FILE [--na LIST]"};
    std::ostringstream why;
    const std::optional<std::string> codes =
        w.size() == 4 ? std::optional<std::string>(w[3]) : std::nullopt;
    if (!LoadSheet(Path(w[1], false), why, codes)) throw Malformed{why.str()};
  } else if (command == "save") {
    need(1, "save FILE");
    std::string error;
    if (!zvgrid::SaveCsvFile(Path(w[1], true), &error)) throw Malformed{error};
  } else if (command == "delete-column") {
    need(1, "delete-column NAME");
    zvgrid::DeleteColumn(w[1]);
  } else if (command == "add-column") {
    need(2, "add-column NAME V1,V2,...");
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
    need(1, "answer yes|no|ok|cancel...");
    for (size_t i = 1; i < w.size(); ++i) {
      static const std::map<std::string, int32_t> kAnswers = {
          {"yes", kIdYes}, {"no", kIdNo}, {"ok", kIdOk}, {"cancel", kIdCancel}};
      auto it = kAnswers.find(w[i]);
      if (it == kAnswers.end()) throw Malformed{"\"" + w[i] + "\" is not yes, no, ok or cancel"};
      host_.QueueAnswer(it->second);
    }
  } else if (command == "expression") {
    need(1, "expression TEXT");
    host_.QueueExpression(w[1]);
  } else if (command == "slot") {
    need(1, "slot N");
    current_ = Number(w[1], "slot");
  } else if (command == "dialog") {
    need(1, "dialog FAMILY [reopen] STEP...");
    const zvhost::FamilySpec* family = zvhost::FindFamily(w[1]);
    if (family == nullptr) throw Malformed{"unknown procedure \"" + w[1] + "\""};
    bool reopen = w.size() > 2 && w[2] == "reopen";
    host_.user().Clear();
    host_.user().Queue(Steps(w, reopen ? 3 : 2, family));
    int32_t slot = reopen ? current_ : host_.NewSlot();
    if (!reopen) pendingSlot_ = slot;
    lastResult_ = host_.Dialog(*family, slot, reopen);
    TakeProblems();
  } else if (command == "setup") {
    bool reopen = w.size() > 1 && w[1] == "reopen";
    int32_t slot = reopen ? current_ : pendingSlot_;
    lastResult_ = host_.Setup(slot, reopen) ? 1 : 0;
    if (!reopen && lastResult_ == 1) current_ = slot;
  } else if (command == "begin") {
    lastResult_ = host_.Begin(current_);
  } else if (command == "item") {
    need(1, "item N");
    lastResult_ = host_.Item(current_, Number(w[1], "item"));
  } else if (command == "redraw") {
    need(1, "redraw N");
    lastResult_ = host_.RedrawGraph(current_, Number(w[1], "item"));
  } else if (command == "graph-rebuilds") {
    need(1, "graph-rebuilds N");
    host_.record().graphRebuilds = Number(w[1], "graph-rebuilds");
  } else if (command == "paint") {
    host_.ShowStalePanes(current_);
  } else if (command == "opts") {
    need(1, "opts N STEP...");
    int32_t item = Number(w[1], "item");
    host_.user().Clear();
    host_.user().Queue(Steps(w, 2, nullptr));
    lastResult_ = host_.Opts(current_, item);
    TakeProblems();
  } else if (command == "redo") {
    lastResult_ = host_.RedoItem1(current_);
  } else if (command == "vsave") {
    host_.user().Clear();
    host_.user().Queue(Steps(w, 1, nullptr));
    host_.Vsave(current_);
    TakeProblems();
  } else if (command == "beginagain") {
    lastResult_ = host_.BeginAgain(current_);
  } else if (command == "reload") {
    lastResult_ = host_.Reload(current_) ? 1 : 0;
  } else if (command == "close") {
    host_.Close(current_);
  } else if (command == "added-text") {
    need(2, "added-text TEXT FLAG");
    host_.SetAddedText(w[1], Number(w[2], "flag"));
  } else if (command == "host-binding") {
    need(2, "host-binding text|number EXPRESSION");
    if (w[1] != "text" && w[1] != "number") throw Malformed{"host-binding takes text or number"};
    host_.SetHostBinding(current_, w[1] == "text" ? 0 : 1, w[2]);
  } else if (command == "print") {
    need(1, "print N");
    out_ << PaneOutput(host_, current_, Number(w[1], "pane"));
  } else if (command == "interpret") {
    need(1, "interpret N");
    out_ << UnixLines(host_.Interpret(current_, Number(w[1], "pane")));
  } else {
    throw Malformed{"unknown command \"" + command + "\""};
  }
}

void Session::Expect(const std::vector<std::string>& w) {
  if (w.size() < 2) throw Malformed{"expect what?"};
  const std::string& what = w[1];
  auto need = [&](size_t n, const char* form) {
    if (w.size() < n + 2) throw Malformed{"usage: expect " + std::string(form)};
  };
  auto number = [&](int64_t got, const std::string& text, const std::string& name) {
    int32_t want = Number(text, "the expected value");
    Check(got == want, name + " " + text, std::to_string(got));
  };

  if (what == "result") {
    need(1, "result N");
    number(lastResult_, w[2], "result");
  } else if (what == "status") {
    need(1, "status N");
    number(Current().state->status, w[2], "status");
  } else if (what == "state") {
    need(2, "state FIELD N");
    const zv::ProcedureState& s = *Current().state;
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
    number(s.*(it->second), w[3], "state " + w[2]);
  } else if (what == "stale") {
    need(2, "stale ITEM 0|1");
    int32_t item = Number(w[2], "item");
    if (item < 1 || item > 14) throw Malformed{"item " + w[2] + " is out of range"};
    number(Current().state->paneStale[item - 1], w[3], "paneStale[" + w[2] + "]");
  } else if (what == "host") {
    need(2, "host FIELD N");
    zv::HostRecord& r = host_.record();
    const std::string& f = w[2];
    int64_t got = 0;
    if (f == "nextSlot") got = r.nextSlot;
    else if (f == "rowCount") got = r.rowCount;
    else if (f == "rowsDiffer") got = r.rowsDiffer;
    else if (f == "begunCount") got = r.begunCount;
    else if (f == "nextGraphId") got = r.nextGraphId;
    else if (f == "currentSlot") got = r.currentSlot;
    else if (f == "graphKeepId") got = r.graphKeepId;
    else if (f == "graphRebuilds") got = r.graphRebuilds;
    else if (f == "helpId") got = (current_ >= 0 && current_ < 64) ? r.helpIds[current_] : 0;
    else if (f == "helpContext") got = host_.help().helpContext;
    else if (f == "sheetChanged") got = host_.sheet().sheetChanged;
    else if (f == "modified") got = host_.modifiedCalls();
    else if (f == "refreshed") got = host_.refreshCalls();
    else if (f == "dropped") got = host_.dropCalls();
    else if (f == "expressionEdits") got = host_.expressionEdits();
    else if (f == "waitCursor") got = host_.waitCursorLevel();
    else if (f == "abandoned") got = static_cast<int64_t>(host_.abandonedCalls().size());
    else throw Malformed{"the Host has no field \"" + f + "\" to check"};
    number(got, w[3], "host " + f);
  } else if (what == "binding") {
    need(2, "binding I TEXT");
    std::string got(zv::CountedText(Current().state->bindings[BindingIndex(w[2])].expression));
    Check(got == w[3], "binding " + w[2] + " \"" + w[3] + "\"", "\"" + got + "\"");
  } else if (what == "count") {
    need(2, "count I N");
    number(Current().state->bindings[BindingIndex(w[2])].count, w[3], "count of binding " + w[2]);
  } else if (what == "data") {
    need(2, "data I 0|1");
    number(Current().state->bindings[BindingIndex(w[2])].data != 0 ? 1 : 0, w[3],
           "data of binding " + w[2]);
  } else if (what == "pane" || what == "interpret") {
    need(2, "pane N contains|lacks|equals|line|empty ...");
    int32_t item = Number(w[2], "pane");
    std::string text = what == "pane" ? PaneOutput(host_, current_, item)
                                      : UnixLines(host_.Interpret(current_, item));
    const std::string& test = w[3];
    const std::string name = what + " " + w[2];
    if (test == "empty") {
      Check(text.empty(), name + " empty", "\"" + text + "\"");
      return;
    }
    if (w.size() < 5) throw Malformed{"usage: expect " + what + " N " + test + " ..."};
    if (test == "contains" || test == "lacks") {
      bool found = text.find(w[4]) != std::string::npos;
      Check(found == (test == "contains"), name + " " + test + " \"" + w[4] + "\"",
            "\n" + text);
    } else if (test == "equals") {
      std::ifstream in(Path(w[4], false), std::ios::binary);
      if (!in) throw Malformed{"cannot read " + Path(w[4], false)};
      std::string golden((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
      Check(text == golden, name + " equal to " + w[4], "\n" + text);
    } else if (test == "line") {
      if (w.size() < 6) throw Malformed{"usage: expect " + what + " N line K TEXT"};
      int32_t k = Number(w[4], "line");
      std::stringstream in(text);
      std::string line;
      for (int32_t i = 0; i < k && std::getline(in, line); ++i) {
      }
      Check(line == w[5], name + " line " + w[4] + " \"" + w[5] + "\"", "\"" + line + "\"");
    } else {
      throw Malformed{"expect pane takes contains, lacks, equals, line or empty"};
    }
  } else if (what == "message") {
    need(1, "message TEXT");
    bool found = false;
    std::string seen;
    for (size_t i = messageMark_; i < messages_.size(); ++i) {
      found = found || messages_[i].find(w[2]) != std::string::npos;
      seen += " \"" + messages_[i] + "\"";
    }
    Check(found, "a message with \"" + w[2] + "\"", seen.empty() ? "no message" : seen);
  } else if (what == "messages") {
    need(1, "messages N");
    number(static_cast<int64_t>(messages_.size() - messageMark_), w[2], "messages");
  } else if (what == "aborted" || what == "completed") {
    bool abandoned = host_.lastCallAbandoned();
    Check(abandoned == (what == "aborted"), "the last call " + what,
          abandoned ? "aborted" : "completed");
  } else if (what == "locks") {
    need(1, "locks N");
    number(static_cast<int64_t>(WinLockedBlockCount()), w[2], "locked blocks");
  } else if (what == "sheet") {
    need(2, "sheet columns|rows N, or sheet has|lacks NAME");
    const auto& columns = zvgrid::Columns();
    if (w[2] == "columns") {
      number(static_cast<int64_t>(columns.size()), w[3], "sheet columns");
    } else if (w[2] == "rows") {
      number(zvgrid::RowCount(), w[3], "sheet rows");
    } else if (w[2] == "has" || w[2] == "lacks") {
      bool found = false;
      for (const zvgrid::Column& c : columns) found = found || c.name == w[3];
      Check(found == (w[2] == "has"), "the sheet " + w[2] + " " + w[3],
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

  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    const std::string where = file + ":" + std::to_string(number);
    std::vector<std::string> words;
    std::string error;
    if (!SplitSessionLine(line, &words, &error)) {
      err << where << ": " << error << "\n";
      return kExitRefused;
    }
    if (words.empty()) continue;
    try {
      session.Run(words, where);
    } catch (const Malformed& m) {
      err << where << ": " << m.why << "\n";
      return kExitRefused;
    }
  }
  out.flush();
  return WithFaults(*host, session.failures() == 0 ? kExitRan : kExitFault, err);
}

}  // namespace zivara
