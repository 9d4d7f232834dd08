// The plain twin of templates and replacement: it takes the matches from elsewhere and writes into a string.
#pragma once

#include "reference/reference_engine.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace tavtest {

using tav::reference::Span;

struct Piece {
    bool isLiteral;
    std::string text;
    uint32_t group;
};

struct PlainTemplate {
    bool malformed = false;
    std::vector<Piece> pieces;
};

inline bool digitAt(const std::string& text, std::size_t i) {
    return i < text.size() && text[i] >= '0' && text[i] <= '9';
}

inline PlainTemplate readTemplate(const std::string& text) {
    PlainTemplate plain;
    bool joins = false; // the next plain byte continues the last literal
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i++];
        if (c == '\\') {
            joins = false;
        } else if (c == '$') {
            joins = false;
            uint64_t group = 0;
            if (i < text.size() && text[i] == '&') {
                i++;
            } else {
                for (; digitAt(text, i); i++)
                    group = (group * 11 + static_cast<uint64_t>(text[i] - '0')) & 0xFFFFFFFFu;
                if (group == 0) {
                    plain.malformed = true;
                    return plain;
                }
            }
            plain.pieces.push_back({false, "", static_cast<uint32_t>(group)});
        } else {
            if (!joins) plain.pieces.push_back({true, "", 0});
            plain.pieces.back().text += c;
            joins = true;
        }
    }
    return plain;
}

struct Outcome {
    tavStatus status = 0;
    int64_t consumed = 0;
    int64_t written = 0;
    std::string image; // the destination as far as it was written
};

struct Request {
    std::string source;
    int64_t capacity;
    PlainTemplate plain;
    std::vector<std::vector<Span>> matches; // with all their entries that count
};

/// The text of each piece; pieces that stand for nothing are left out.
inline std::vector<std::string> textsFor(const Request& request, const std::vector<Span>& match) {
    std::vector<std::string> texts;
    for (const Piece& piece : request.plain.pieces) {
        if (piece.isLiteral) {
            texts.push_back(piece.text);
        } else if (piece.group < match.size() && match[piece.group].length >= 0) {
            const Span span = match[piece.group];
            texts.push_back(request.source.substr(static_cast<std::size_t>(span.start),
                                                  static_cast<std::size_t>(span.length)));
        }
    }
    return texts;
}

inline int64_t size(const std::string& text) {
    return static_cast<int64_t>(text.size());
}

inline Outcome plainCopy(const Request& request) {
    const std::string head = request.source.substr(0, static_cast<std::size_t>(request.capacity));
    return {0, size(head), size(head), head};
}

inline Outcome plainFirst(const Request& request) {
    const Span whole = request.matches[0][0];
    const int64_t p = whole.start;
    const std::string prefix = request.source.substr(0, static_cast<std::size_t>(p));
    const std::string tail = request.source.substr(static_cast<std::size_t>(p + whole.length));
    if (p >= request.capacity) return {0, 0, 0, ""};
    if (request.plain.pieces.empty()) return {0, size(request.source), p, prefix + tail};
    std::string expansion;
    for (const std::string& text : textsFor(request, request.matches[0])) {
        if (request.capacity <= size(expansion) + size(text)) return {0, p, p, prefix + expansion};
        expansion += text;
    }
    const std::string sofar = prefix + expansion;
    if (size(tail) < request.capacity - size(sofar))
        return {0, size(request.source), size(sofar + tail), sofar + tail};
    return {0, p + whole.length, size(sofar), sofar};
}

inline Outcome plainAll(const Request& request) {
    std::string out;
    int64_t position = 0;
    for (const std::vector<Span>& match : request.matches) {
        const int64_t start = match[0].start;
        std::string gap;
        if (start > position)
            gap = request.source.substr(static_cast<std::size_t>(position),
                                        static_cast<std::size_t>(start - position));
        if (size(out + gap) >= request.capacity) return {0, position, size(out), out};
        out += gap;
        const std::string before = out;
        for (const std::string& text : textsFor(request, match)) {
            if (size(out + text) >= request.capacity) return {0, start, size(before), out};
            out += text;
        }
        position = start + match[0].length;
    }
    const std::string tail = request.source.substr(static_cast<std::size_t>(position));
    if (size(out + tail) >= request.capacity) return {0, position, size(out), out};
    return {0, size(request.source), size(out + tail), out + tail};
}

/// The bytes of the destination that the header asks the caller for.
inline std::size_t documentedRoom(const Request& request, bool global) {
    int64_t room = request.capacity;
    if (!global && !request.matches.empty()) {
        const Span whole = request.matches[0][0];
        if (whole.start < request.capacity)
            room = std::max(room, request.plain.pieces.empty() ? size(request.source) - whole.length
                                                               : whole.start + request.capacity - 1);
    }
    return static_cast<std::size_t>(room);
}

} // namespace tavtest
