#include "host/text/WindowsTerminal.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <system_error>

#include "platform/values/Text.h"
#include "platform/values/WideText.h"

// Consoles of Windows read and write UTF-16 by calls of their own; bytes they take for the code page that is set, in
// which most letters are missing. So each of the three streams is looked at: a console gets a buffer that converts, a
// file or a pipe one that passes bytes on, and the library's streams are put on these for as long as this lives.
namespace tavi::host {
namespace {

// Only a console has a mode; a null device is none either.
bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0;
}

/// How many bytes at the end are the beginning of a character that is still to come.
/// Output comes in pieces that end anywhere. A character is written only when all of its bytes are there; converted
/// half, it would become two replacement characters.
std::size_t UnfinishedBytes(const std::string& text) {
  constexpr std::size_t kLongest = 3;
  for (std::size_t count = 1; count <= std::min(kLongest, text.size()); ++count) {
    const auto byte = static_cast<unsigned char>(text[text.size() - count]);
    if (byte < 0x80) return 0;
    if (byte < 0xC0) continue;
    const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
    return count < length ? count : 0;
  }
  return 0;
}

}  // namespace

/// Writes UTF-8 on a console, line by line.
class WindowsTerminal::ConsoleWriter final : public std::streambuf {
 public:
  /// `understandsSequences` tells whether the console can be made to follow escape sequences.
  ConsoleWriter(HANDLE console, bool* understandsSequences) : console_(console) {
    ::GetConsoleMode(console_, &formerMode_);
    // Older systems refuse the last flag; then no bars are shown, which need it.
    const DWORD mode = formerMode_ | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING;
    const bool isSet = ::SetConsoleMode(console_, mode) != 0;
    if (understandsSequences != nullptr) *understandsSequences = isSet;
  }
  ~ConsoleWriter() override {
    WritePending();
    ::SetConsoleMode(console_, formerMode_);
  }
  ConsoleWriter(const ConsoleWriter&) = delete;
  ConsoleWriter& operator=(const ConsoleWriter&) = delete;

 protected:
  int_type overflow(int_type character) override {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
  }

  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    constexpr std::size_t kMostPending = 4096;
    const std::string_view added(bytes, static_cast<std::size_t>(count));
    pending_ += added;
    // A line at a time: a call for each piece would be slow, and a person waits for whole lines.
    const bool isDue = pending_.size() > kMostPending || added.find('\n') != std::string_view::npos;
    return !isDue || WritePending() ? count : 0;
  }

  int sync() override { return WritePending() ? 0 : -1; }

 private:
  bool WritePending() {
    // Consoles of older systems refuse more at a time.
    constexpr std::size_t kMostAtATime = 8000;
    const std::size_t ready = pending_.size() - UnfinishedBytes(pending_);
    const std::wstring text = windows::ToWide(ReplaceAll(pending_.substr(0, ready), "\n", "\r\n"));
    pending_.erase(0, ready);
    for (std::size_t at = 0; at < text.size();) {
      DWORD written = 0;
      const auto count = static_cast<DWORD>(std::min(kMostAtATime, text.size() - at));
      // It may write less than it was given.
      if (::WriteConsoleW(console_, text.data() + at, count, &written, nullptr) == 0 || written == 0) return false;
      at += written;
    }
    return true;
  }

  HANDLE console_;
  DWORD formerMode_ = 0;
  std::string pending_;
};

/// Writes bytes into a file or a pipe as they are, and remembers why a write failed. After a failure nothing more is
/// written.
class WindowsTerminal::FileWriter final : public std::streambuf {
 public:
  explicit FileWriter(HANDLE file) : file_(file) { setp(buffer_.data(), buffer_.data() + buffer_.size()); }
  ~FileWriter() override { WritePending(); }
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  /// The reason of the first failure; none while all went well.
  [[nodiscard]] std::error_code Failure() const { return failure_; }

 protected:
  int_type overflow(int_type character) override {
    if (!WritePending()) return traits_type::eof();
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    return sputc(traits_type::to_char_type(character));
  }

  int sync() override { return WritePending() ? 0 : -1; }

 private:
  bool WritePending() {
    const char* at = pbase();
    while (!failure_ && at < pptr()) {
      DWORD written = 0;
      if (::WriteFile(file_, at, static_cast<DWORD>(pptr() - at), &written, nullptr) == 0) {
        failure_ = FailureOf(::GetLastError());
      }
      at += written;
    }
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return !failure_;
  }

  /// The system has several words for a reader that is gone.
  static std::error_code FailureOf(DWORD error) {
    const bool isReaderGone = error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
    if (isReaderGone) return std::make_error_code(std::errc::broken_pipe);
    return {static_cast<int>(error), std::system_category()};
  }

  HANDLE file_;
  std::error_code failure_;
  std::array<char, 16384> buffer_{};
};

/// Reads what is typed at a console as UTF-8. A line that begins with Ctrl+Z ends the input.
class WindowsTerminal::ConsoleReader final : public std::streambuf {
 public:
  explicit ConsoleReader(HANDLE console) : console_(console) {}

 protected:
  int_type underflow() override {
    constexpr wchar_t kEndKey = 0x1A;
    std::array<wchar_t, 2048> typed{};
    DWORD count = 0;
    const bool isRead =
        ::ReadConsoleW(console_, typed.data(), static_cast<DWORD>(typed.size()), &count, nullptr) != 0 && count > 0;
    // The key is a character like others to the call; in the middle of a line it stays one.
    if (!isRead || (isLineStart_ && typed.front() == kEndKey)) return traits_type::eof();
    isLineStart_ = typed[count - 1] == L'\n';
    std::wstring text = unfinished_ + std::wstring(typed.data(), count);
    unfinished_.clear();
    // A long line comes in pieces, too, and a piece may end between the halves of a character.
    if (IS_HIGH_SURROGATE(text.back())) {
      unfinished_ = text.back();
      text.pop_back();
    }
    line_ = ReplaceAll(windows::FromWide(text), "\r\n", "\n");
    setg(line_.data(), line_.data(), line_.data() + line_.size());
    // Nothing but such a half: the rest is read at once.
    return line_.empty() ? underflow() : traits_type::to_int_type(line_.front());
  }

 private:
  HANDLE console_;
  bool isLineStart_ = true;
  std::wstring unfinished_;
  std::string line_;
};

WindowsTerminal::WindowsTerminal() {
  // Line feeds alone, in and out: other programs read the output, and a statement's text may hold either.
  for (FILE* stream : {stdin, stdout, stderr}) static_cast<void>(_setmode(_fileno(stream), _O_BINARY));
  const HANDLE in = ::GetStdHandle(STD_INPUT_HANDLE);
  const HANDLE out = ::GetStdHandle(STD_OUTPUT_HANDLE);
  const HANDLE error = ::GetStdHandle(STD_ERROR_HANDLE);
  if (IsConsole(in)) in_ = std::make_unique<ConsoleReader>(in);
  if (IsConsole(out)) {
    out_ = std::make_unique<ConsoleWriter>(out, nullptr);
  } else {
    fileOut_ = std::make_unique<FileWriter>(out);
  }
  if (IsConsole(error)) error_ = std::make_unique<ConsoleWriter>(error, &showsProgress_);
  // Exchanged when everything has been made, so that a failure leaves the streams as they were.
  if (in_) formerIn_ = std::cin.rdbuf(in_.get());
  formerOut_ = out_ ? std::cout.rdbuf(out_.get()) : std::cout.rdbuf(fileOut_.get());
  if (error_) formerError_ = std::cerr.rdbuf(error_.get());
}

WindowsTerminal::~WindowsTerminal() {
  // Before the buffers go, which the streams must not have then.
  std::cout.flush();
  std::cerr.flush();
  if (in_) std::cin.rdbuf(formerIn_);
  std::cout.rdbuf(formerOut_);
  if (error_) std::cerr.rdbuf(formerError_);
}

Terminal WindowsTerminal::Streams() {
  const auto outputFailure = [this] { return fileOut_ ? fileOut_->Failure() : std::error_code(); };
  return {std::cin, std::cout, std::cerr, in_ != nullptr, out_ != nullptr, showsProgress_, outputFailure};
}

std::vector<std::string> ProgramArguments() {
  struct FreeLocally {
    void operator()(LPWSTR* list) const { ::LocalFree(list); }
  };
  int count = 0;
  // The arguments of main are in the code page of the machine.
  const std::unique_ptr<LPWSTR, FreeLocally> list(::CommandLineToArgvW(::GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; list && i < count; ++i) arguments.push_back(windows::FromWide(list.get()[i]));
  return arguments;
}

}  // namespace tavi::host
