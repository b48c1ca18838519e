// Message boxes as people see them: of the platform's class, and of the server when it brings an old file up to date.
#include "platform/windows/SystemServices.h"

#include <array>
#include <atomic>
#include <thread>

#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

constexpr DWORD kBetweenLooks = 10;
constexpr int kTextOfBox = 0xFFFF;

std::wstring ClassOf(HWND window) {
  std::array<wchar_t, 32> name{};
  ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
  return name.data();
}

template <typename Reader>
std::string TextBy(Reader read) {
  std::wstring text(8192, L'\0');
  text.resize(static_cast<std::size_t>(read(text.data(), static_cast<int>(text.size()))));
  return windows::FromWide(text);
}

std::string IconOf(HWND box) {
  constexpr std::array<std::pair<const char*, int>, 3> kIcons{
      {{"information", 32516}, {"exclamation", 32515}, {"critical", 32513}}};
  for (HWND child = ::GetWindow(box, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    if (ClassOf(child) != L"Static" || (::GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) != SS_ICON) continue;
    // The box has the icon itself or keeps it as the number of the resource; asking the system gives the same handle.
    const LRESULT shown = ::SendMessageW(child, STM_GETICON, 0, 0);
    for (const auto& [name, number] : kIcons) {
      const void* const own = ::LoadIconW(nullptr, MAKEINTRESOURCEW(number));
      if (reinterpret_cast<LRESULT>(own) == shown) return name;
    }
  }
  return {};
}

/// Looks for boxes of one thread and presses their buttons until it is told to stop.
class Finger {
 public:
  explicit Finger(DWORD thread)
      : thread_(thread),
        // Stands for the window of the program that calls.
        program_(::CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr)),
        worker_([this] { Look(); }) {}
  ~Finger() {
    if (worker_.joinable()) Stop();
  }
  Finger(const Finger&) = delete;
  Finger& operator=(const Finger&) = delete;

  std::vector<ShownBox> Stop() {
    stops_ = true;
    worker_.join();
    ::DestroyWindow(program_);
    return std::move(boxes_);
  }

 private:
  static BOOL CALLBACK Remember(HWND window, LPARAM target) {
    if (ClassOf(window) != L"#32770" || ::IsWindowVisible(window) == 0) return TRUE;
    *std::bit_cast<HWND*>(target) = window;
    return FALSE;
  }

  void Look() {
    while (!stops_) {
      HWND box = nullptr;
      ::EnumThreadWindows(thread_, Remember, std::bit_cast<LPARAM>(&box));
      if (box == nullptr) {
        ::Sleep(kBetweenLooks);
        continue;
      }
      boxes_.push_back(Read(box));
      ::PostMessageW(box, WM_COMMAND, IDOK, 0);
      while (::IsWindow(box) != 0) ::Sleep(kBetweenLooks);
    }
  }

  [[nodiscard]] ShownBox Read(HWND box) const {
    ShownBox shown;
    shown.title = TextBy([&](wchar_t* text, int size) { return ::GetWindowTextW(box, text, size); });
    shown.text = TextBy(
        [&](wchar_t* text, int size) { return static_cast<int>(::GetDlgItemTextW(box, kTextOfBox, text, size)); });
    shown.icon = IconOf(box);
    shown.isVisible = ::IsWindowVisible(box) != 0;
    shown.isModal = ::IsWindowEnabled(program_) == 0;
    return shown;
  }

  DWORD thread_;
  HWND program_;
  std::atomic<bool> stops_ = false;
  std::vector<ShownBox> boxes_;
  std::thread worker_;
};

constexpr const char* kUpdateText =
    "I need to update your club membership database file to make it compatible compatible with the latest software "
    "version. When you click OK, this update will take place automatically.";

void CheckBox(const std::string& what, const ShownBox& box, const std::string& icon, const std::string& title,
              const std::string& text) {
  CheckText(what + ": title", box.title, title);
  CheckText(what + ": text", box.text, text);
  CheckText(what + ": icon", box.icon, icon);
  Check(what + ": is on the desktop, before the program's windows", box.isVisible && box.isModal);
}

/// Opens the club file of a folder and gives the boxes that show on the way, of which there have to be `count`.
std::vector<ShownBox> BoxesAtOpening(const std::string& what, const std::string& folder, std::size_t count) {
  const auto database = NewDatabase();
  database->put_DatabaseFolder(AutomationText(folder).Get());
  auto boxes = AnsweredBoxes([&] { CheckResult(what + " opens", database->OpenDatabase(), S_OK); });
  database->CloseDatabase();
  CheckText(what + ": message boxes", std::to_string(boxes.size()), std::to_string(count));
  boxes.resize(count);
  return boxes;
}

void CheckOwnBoxes() {
  const SystemMessageBoxes boxes;
  const std::string text = "Łódź 橋 𝔊 & <b>\r\n\r\nline";
  const auto show = [&](MessageBoxIcon icon) {
    auto shown = AnsweredBoxes([&] { boxes.Show(icon, "Zoë 橋", text); });
    shown.resize(1);
    return shown.front();
  };
  CheckBox("a note", show(MessageBoxIcon::Information), "information", "Zoë 橋", text);
  CheckBox("a warning", show(MessageBoxIcon::Exclamation), "exclamation", "Zoë 橋", text);
  CheckBox("an error", show(MessageBoxIcon::Critical), "critical", "Zoë 橋", text);
}

void CheckUpdate(const std::string& folder) {
  MakeClub(folder);
  RunStatements(folder,
                {"Insert into Members (MembershipNumber, FirstName) Values (1, 'Ann')",
                 "Alter Table Members Drop Column Stratum", "Alter Table Settings Add Column DirectCreditMPs Bit"});
  const auto boxes = BoxesAtOpening("an old file", folder, 2);
  CheckBox("an update", boxes[0], "information", "Database Update Required", kUpdateText);
  CheckText("what could not be removed: title", boxes[1].title, "Database Update Warning");
  CheckText("what could not be removed: icon", boxes[1].icon, "information");
  Check(
      "what could not be removed: " + boxes[1].text,
      boxes[1].text.starts_with("Failed to remove obsolete column DirectCreditMPs from database table Settings\r\n\r\n"
                                "Microsoft Access reports error number 0x8"));
  CheckText("the column is there afterwards", Column(folder, "Select Stratum From Members").front(), "0");
  CheckText("no box at the next opening", std::to_string(BoxesAtOpening("the file", folder, 0).size()), "0");
}

void CheckReadOnlyFile(const std::string& folder) {
  MakeClub(folder);
  RunStatements(folder, {"Alter Table Members Drop Column Stratum"});
  const std::wstring file = windows::ToWidePath(folder + "\\ClubMembers.mdb");
  ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
  const auto boxes = BoxesAtOpening("an old file that is read-only", folder, 2);
  CheckBox("an update", boxes[0], "information", "Database Update Required", kUpdateText);
  CheckText("another error: title", boxes[1].title, "Error updating database layout");
  CheckText("another error: icon", boxes[1].icon, "exclamation");
  Check("another error: " + boxes[1].text,
        boxes[1].text.starts_with("MS Access reports the following error:\r\n\r\n") && boxes[1].text.size() > 50);
  ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

void CheckFieldLimit(const std::string& folder) {
  constexpr int kMostColumns = 255;
  MakeClub(folder);
  std::vector<std::string> statements{"Alter Table Members Drop Column Stratum",
                                      "Alter Table Members Drop Column Title", "Create Table Wide (A Long)"};
  for (int column = 0; column < kMostColumns; ++column) {
    statements.push_back("Alter Table Members Add Column X" + std::to_string(column) + " Bit");
  }
  // The last ones find no place any more.
  try {
    RunStatements(folder, statements);
    Check("a table has a limit", false);
  } catch (const std::exception&) {
    Check("a table has a limit", true);
  }
  const auto boxes = BoxesAtOpening("a full table", folder, 2);
  CheckText("the limit: title", boxes[1].title, "Error updating database layout");
  CheckText("the limit: icon", boxes[1].icon, "critical");
  Check("the limit: " + boxes[1].text,
        boxes[1].text.starts_with(
            "Your database has reached the maximum number of field updates. This is a limitation") &&
            boxes[1].text.find("choose \"Database Utilities...\"\r\n    then \"Compact") != std::string::npos);
}

}  // namespace

std::vector<ShownBox> AnsweredBoxes(const std::function<void()>& step) {
  Finger finger(::GetCurrentThreadId());
  step();
  return finger.Stop();
}

void CheckMessageBoxes(const std::string& folder) {
  MakeFolder(folder);
  CheckOwnBoxes();
  CheckUpdate(folder + "\\Łódź 橋");
  CheckReadOnlyFile(folder + "\\readonly");
  CheckFieldLimit(folder + "\\limit");
}

}  // namespace tavi::service_test
