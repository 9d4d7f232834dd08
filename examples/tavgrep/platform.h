// What differs between the systems: arguments, files and the terminal. Texts are UTF-8 on both.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace tavgrep {

/// The program proper; the system's own entry point calls it with the arguments after the program's name.
int run(const std::vector<std::string>& arguments);

/// Opens a file for reading bytes; null on failure, with the reason in errno.
std::FILE* openForReading(const std::string& name);

/// Makes the standard streams carry bytes as they are.
void useBinaryStreams();

bool outputIsTerminal();

} // namespace tavgrep
