#include "platform.h"

#if defined(_WIN32)

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace tavgrep {

namespace {

std::string narrow(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();
    return utf8;
}

std::wstring widen(const std::string& text) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
    if (size <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), size);
    wide.pop_back();
    return wide;
}

} // namespace

std::FILE* openForReading(const std::string& name) {
    return _wfopen(widen(name).c_str(), L"rb");
}

void useBinaryStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

bool outputIsTerminal() {
    return _isatty(_fileno(stdout)) != 0;
}

} // namespace tavgrep

// The runtime would otherwise expand the stars of a pattern into file names.
extern "C" int _dowildcard;
int _dowildcard = 0;

extern "C" int wmain(int count, wchar_t** values) {
    std::vector<std::string> arguments;
    for (int i = 1; i < count; i++)
        arguments.push_back(tavgrep::narrow(values[i]));
    return tavgrep::run(arguments);
}

#else

#include <unistd.h>

namespace tavgrep {

std::FILE* openForReading(const std::string& name) {
    return std::fopen(name.c_str(), "rb");
}

void useBinaryStreams() {}

bool outputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

} // namespace tavgrep

int main(int count, char** values) {
    return tavgrep::run(std::vector<std::string>(values + 1, values + count));
}

#endif
