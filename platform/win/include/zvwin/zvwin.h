// The window system that the module and the Host stand on: 32-bit references
// for pointer-like fields, movable global memory, counted texts, windows and
// their text, task-modal message boxes, profile reads, the version query,
// system help, resource modules (string tables and dialog templates), the wait
// cursor and a headless engine for modal dialogs driven by scripted user
// actions. One instance per process; one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// 32-bit references. 0 is never a valid reference.
using Handle = uint32_t;     // movable global block
using HostRef = uint32_t;    // an object or virtual table of the Host
using TextRef = uint32_t;    // counted text
using WindowRef = uint32_t;  // window handle
using ModuleRef = uint32_t;  // loaded resource module

// ---------------------------------------------------------------------------
// References. Any object may be registered and then named by a 32-bit value.
uint32_t WinRegister(void* object);  // 0 for nullptr
void* WinResolve(uint32_t ref);      // nullptr for 0 or an unknown reference
void WinUnregister(uint32_t ref);

// ---------------------------------------------------------------------------
// Counted texts as the Host stores them: the reference resolves to the
// characters (zero-terminated), and the int32 8 bytes before them holds the
// length.
TextRef WinTextCreate(std::string_view text);
void WinTextFree(TextRef text);

// ---------------------------------------------------------------------------
// Movable global memory. A block is addressed by its handle; a pointer to it
// is valid from WinGlobalLock to the matching WinGlobalUnlock. Locks nest.
// With moving blocks on, every unlock that brings the count to 0 moves the
// block to a fresh address and poisons the old one, so a pointer kept past
// its unlock is caught by the address sanitizer or reads garbage.
Handle WinGlobalAlloc(uint32_t bytes);  // zero-filled; 0 when refused
void* WinGlobalLock(Handle block);      // nullptr for an invalid handle
void WinGlobalUnlock(Handle block);
void WinGlobalFree(Handle block);      // 0 is ignored
uint32_t WinGlobalSize(Handle block);  // 0 for an invalid handle
int32_t WinGlobalLockCount(Handle block);

void WinSetMovingBlocks(bool on);         // default: on in test builds (ZV_MOVE_BLOCKS) or
                                          // when ZIVARA_MOVE_BLOCKS=1
void WinFailAllocationsAfter(int32_t n);  // the (n+1)-th allocation from now fails, once;
                                          // -1: never
size_t WinLiveBlockCount();
size_t WinLockedBlockCount();  // blocks with a lock count above 0

// ---------------------------------------------------------------------------
// Windows: just enough for panes and dialogs to hold text.
WindowRef WinCreateWindow(std::string_view className);
void WinDestroyWindow(WindowRef window);
void WinSetWindowText(WindowRef window, std::string_view text);
std::string WinGetWindowText(WindowRef window);
// The window's text without a copy, valid until the window's next change.
std::string_view WinWindowTextView(WindowRef window);
void WinInvalidate(WindowRef window, bool erase);
int32_t WinInvalidateCount(WindowRef window);
WindowRef WinGetActiveWindow();
void WinSetActiveWindow(WindowRef window);

// ---------------------------------------------------------------------------
// Message boxes.
enum WinMessageStyle : uint32_t {
  kMbOk = 0x0,
  kMbYesNo = 0x4,
  kMbIconQuestion = 0x20,
  kMbIconExclamation = 0x30,
  kMbIconInformation = 0x40,
  kMbTaskModal = 0x2000,
};
enum WinAnswer : int32_t { kIdOk = 1, kIdCancel = 2, kIdYes = 6, kIdNo = 7 };

struct MessageBoxCall {
  WindowRef owner;
  std::string text = {};
  std::string caption;
  uint32_t style;
  int32_t answer;  // what the box returned
};

// Answers a box; returning 0 leaves the default: OK for an OK box, No for a
// Yes/No question.
using MessageBoxResponder = std::function<int32_t(const MessageBoxCall&)>;

int32_t WinMessageBox(WindowRef owner, std::string_view text, std::string_view caption,
                      uint32_t style);
void WinSetMessageBoxResponder(MessageBoxResponder responder);
const std::vector<MessageBoxCall>& WinMessageBoxLog();
void WinClearMessageBoxLog();

// ---------------------------------------------------------------------------
// Profile: the INI file named by ZIVARA_PROFILE; no file or no key gives the
// default.
int32_t WinGetProfileInt(const char* section, const char* key, int32_t defaultValue);
uint32_t WinGetProfileString(const char* section, const char* key, const char* defaultValue,
                             char* buffer, uint32_t size);

// ---------------------------------------------------------------------------
// Version query. platformId: 0 Win32s, 1 Windows, 2 NT (the default).
struct WinOsVersionInfo {
  uint32_t size;  // must be 148
  uint32_t majorVersion;
  uint32_t minorVersion;
  uint32_t buildNumber;
  uint32_t platformId;
  char servicePack[128];
};
static_assert(sizeof(WinOsVersionInfo) == 148);
int32_t WinGetVersionEx(WinOsVersionInfo* info);  // 1, or 0 when size is not 148
void WinSetPlatformId(uint32_t platformId);

// ---------------------------------------------------------------------------
// System help: calls are recorded.
inline constexpr uint32_t kHelpContext = 1;
struct HelpCall {
  WindowRef window;
  std::string file;
  uint32_t command;
  uint32_t data;
};
int32_t WinHelp(WindowRef window, const char* file, uint32_t command, uint32_t data);
const std::vector<HelpCall>& WinHelpLog();
void WinClearHelpLog();

// ---------------------------------------------------------------------------
// Resource modules. "keel4res.dll" loads the string table and the dialog
// templates from the resource folder: ZIVARA_RESOURCES, else the folder the
// build was configured with.
ModuleRef WinLoadLibrary(const char* name);  // 0 when it cannot be loaded
void WinFreeLibrary(ModuleRef module);
// Copies string `id` into buffer (cut to size - 1, terminated) and returns its
// length; 0 and an empty buffer when the table lacks it.
int32_t WinLoadString(ModuleRef module, uint32_t id, char* buffer, int32_t size);
std::optional<std::string> WinFindString(ModuleRef module, uint32_t id);
// String numbers asked for and not found since the last clear.
const std::vector<uint32_t>& WinMissingStrings();
void WinClearMissingStrings();
// A named image (bitmap) of the module: a reference, or 0 when absent.
// The reference resolves (WinResolve) to a WinImage and stays valid until the
// module is freed; each name and colour mode has one reference.
uint32_t WinLoadImage(ModuleRef module, const char* name, bool systemColors);
struct WinImage {
  std::string name;
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;  // row by row, 1 is black
  bool systemColors = false;    // loaded with the system's 3-D colours
};

// A dialog template: caption and controls.
enum class ControlKind {
  kStatic,
  kEdit,
  kMultiLineEdit,
  kCheckBox,
  kRadio,
  kListBox,
  kComboBox,
  kButton,
  kImageButton,
  kGroupBox
};
struct ControlTemplate {
  int32_t id;
  ControlKind kind;
  std::string text = {};
  bool groupStart = false;  // starts a radio group, which runs to the next control with it set
  bool disabled = false;    // starts disabled
  std::string name = {};    // the word a user may call it by (NAME flag); empty when none
};
struct DialogTemplate {
  uint32_t id;
  std::string caption;
  std::vector<ControlTemplate> controls;
};
const DialogTemplate* WinFindDialogTemplate(ModuleRef module, uint32_t id);

// ---------------------------------------------------------------------------
// The wait cursor: a counter.
void WinWaitCursor(int32_t change);  // +1 raises, -1 lowers
int32_t WinWaitCursorLevel();

// The module's application object hooks.
struct WinMsg {
  WindowRef window;
  uint32_t message;
  uint32_t wParam;
  int32_t lParam;
  uint32_t time;
  int32_t x, y;
};
int32_t WinAppPreTranslateMessage(const WinMsg* message);  // 1 when handled
int32_t WinAppOnIdle(int32_t count);  // non-zero while more idle work is wanted

// ---------------------------------------------------------------------------
// Modal dialogs. The module's dialog classes derive from WinDialog and
// override the handlers. DoModal builds the controls from the template of the
// current resource module, calls OnInitDialog, then asks the installed driver
// for one user action after another until the dialog ends. A driver that has
// no more actions cancels the dialog.

// Notification codes passed to OnCommand.
enum WinNotify : int32_t {
  kBnClicked = 0,
  kEnChange = 0x300,
  kLbnSelChange = 1,
  kLbnDblClk = 2,
};

class WinDialog;

struct DialogAction {
  enum class Kind {
    kSetText,      // replace the text of an edit control
    kCheck,        // set a check box to value (0 or 1), then notify
    kSelect,       // select entry `value` of a list box, or turn on radio button `control`
    kPress,        // press a button; 1 is OK, 2 is Cancel
    kDoubleClick,  // double click entry `value` of a list box
    kSetSelection  // set the caret or selection of an edit control: [value, value2)
  };
  Kind kind;
  int32_t control = 0;
  std::string text = {};
  int32_t value = 0;
  int32_t value2 = 0;

  static DialogAction SetText(int32_t control, std::string text) {
    return {Kind::kSetText, control, std::move(text), 0, 0};
  }
  static DialogAction Check(int32_t control, int32_t state) {
    return {Kind::kCheck, control, {}, state, 0};
  }
  static DialogAction Select(int32_t control, int32_t entry) {
    return {Kind::kSelect, control, {}, entry, 0};
  }
  static DialogAction SelectRadio(int32_t control) { return {Kind::kSelect, control, {}, 0, 0}; }
  static DialogAction Press(int32_t control) { return {Kind::kPress, control, {}, 0, 0}; }
  static DialogAction DoubleClick(int32_t control, int32_t entry) {
    return {Kind::kDoubleClick, control, {}, entry, 0};
  }
  // end -1: to the end of the text
  static DialogAction SetSelection(int32_t control, int32_t start, int32_t end) {
    return {Kind::kSetSelection, control, {}, start, end};
  }
};

// The user in front of the dialogs.
class WinDialogDriver {
 public:
  virtual ~WinDialogDriver() = default;
  // The next action for this dialog, or nothing to give up (Cancel).
  virtual std::optional<DialogAction> NextAction(WinDialog& dialog) = 0;
  // Around each run, after the controls are built (before OnInitDialog) and
  // after the dialog has ended (with kIdCancel when an exception left it).
  // Dialogs nest when a handler opens another.
  virtual void DialogOpened(WinDialog& dialog) { (void)dialog; }
  virtual void DialogClosed(WinDialog& dialog, int32_t result) {
    (void)dialog;
    (void)result;
  }
};
void WinSetDialogDriver(WinDialogDriver* driver);  // not owned; nullptr: every dialog cancels
WinDialogDriver* WinGetDialogDriver();

// A driver for tests: one script per dialog, taken in order. A dialog that
// opens gets the next script if its template matches, and its actions one by
// one; when they run out the dialog cancels. A dialog that does not match the
// next script gets no actions (so it cancels) and is counted in Unexpected().
//   ScriptedDialogDriver user({{848, {DialogAction::SetText(101, "Time"),
//                                     DialogAction::Press(kIdOk)}}});
//   WinSetDialogDriver(&user);
class ScriptedDialogDriver : public WinDialogDriver {
 public:
  struct Script {
    uint32_t templateId;
    std::vector<DialogAction> actions;
  };
  ScriptedDialogDriver() = default;
  explicit ScriptedDialogDriver(std::vector<Script> scripts);
  void Add(Script script);

  std::optional<DialogAction> NextAction(WinDialog& dialog) override;
  void DialogOpened(WinDialog& dialog) override;
  void DialogClosed(WinDialog& dialog, int32_t result) override;

  size_t ScriptsLeft() const;                       // scripts not yet started
  const std::vector<uint32_t>& Unexpected() const;  // templates of dialogs with no script

 private:
  struct Running {
    const WinDialog* dialog;
    std::optional<size_t> script;
    size_t next = 0;
  };
  std::vector<Script> scripts_;
  size_t nextScript_ = 0;
  std::vector<Running> running_;
  std::vector<uint32_t> unexpected_;
};

// A record of each dialog that ran, for tests and the command line.
struct DialogRun {
  uint32_t templateId = 0;
  std::string caption;
  int32_t result = 0;
  std::vector<std::pair<int32_t, std::string>> finalTexts;  // edit controls at the end
  int32_t actions = 0;  // driver actions taken, refused ones included
  int32_t refused = 0;  // actions refused
};
const std::vector<DialogRun>& WinDialogLog();
void WinClearDialogLog();

class WinDialog {
 public:
  explicit WinDialog(uint32_t templateId);
  virtual ~WinDialog();
  WinDialog(const WinDialog&) = delete;
  WinDialog& operator=(const WinDialog&) = delete;

  // kIdOk or kIdCancel (or what a handler passed to EndDialog); -1 when the
  // template does not exist. Changes made by the program (SetItemText,
  // ReplaceSelection, CheckButton, ListSetCurSel) send no notification; the
  // driver's actions do.
  int32_t DoModal();

  virtual bool OnInitDialog() { return true; }
  virtual void OnOK() { EndDialog(kIdOk); }
  virtual void OnCancel() { EndDialog(kIdCancel); }
  // Buttons other than OK and Cancel, check boxes, radio buttons, list boxes
  // and edit changes arrive here.
  virtual void OnCommand(int32_t control, int32_t notification) {
    (void)control;
    (void)notification;
  }
  void EndDialog(int32_t result);

  uint32_t templateId() const;
  WindowRef window() const;
  std::string Caption() const;
  void SetCaption(std::string_view caption);

  bool HasControl(int32_t id) const;
  ControlKind KindOf(int32_t id) const;
  std::string GetItemText(int32_t id) const;
  void SetItemText(int32_t id, std::string_view text);
  int32_t IsChecked(int32_t id) const;
  void CheckButton(int32_t id, int32_t state);
  // Turns on `id` and off every other radio button of the range.
  void CheckRadio(int32_t first, int32_t last, int32_t id);
  void EnableItem(int32_t id, bool enabled);
  bool IsEnabled(int32_t id) const;
  void SetFocusItem(int32_t id);
  int32_t FocusItem() const;
  void SetItemImage(int32_t id, uint32_t image);
  uint32_t ItemImage(int32_t id) const;

  // Edit controls: caret and selection as character positions.
  void GetSelection(int32_t id, int32_t* start, int32_t* end) const;
  void SetSelection(int32_t id, int32_t start, int32_t end);
  void ReplaceSelection(int32_t id, std::string_view text);
  int32_t LineFromChar(int32_t id, int32_t position) const;  // position -1: the caret
  void ScrollToLine(int32_t id, int32_t firstVisibleLine);
  int32_t FirstVisibleLine(int32_t id) const;

  // List boxes.
  void ListReset(int32_t id);
  int32_t ListAdd(int32_t id, std::string_view text);
  int32_t ListCount(int32_t id) const;
  std::string ListText(int32_t id, int32_t index) const;
  int32_t ListCurSel(int32_t id) const;  // -1 for none
  void ListSetCurSel(int32_t id, int32_t index);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};
