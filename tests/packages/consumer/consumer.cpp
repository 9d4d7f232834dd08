// The same in C++, by the C++ header.
#include <cstdio>
#include <string>
#include <tavch.hpp>

int main() {
    tav::Pattern pattern("a(b+)c", "i");
    if (!pattern) return 1;
    const std::string subject = "xxABBBcyy abc";
    const tav::Match match = pattern.find(subject);
    std::printf("%s %s\n", std::string(match[0]).c_str(), std::string(match[1]).c_str());
    std::printf("%s\n", pattern.replaceAll(subject, "<$1>")->c_str());
}
