// The case of the 26 letters A to Z, and of nothing else: no accented letter, whatever the code page.
#pragma once

#include "base/vector.h"

namespace tav::latin {

inline constexpr int caseDistance = 'a' - 'A';

template <class E>
constexpr E toLower(E value) {
    return value >= 'A' && value <= 'Z' ? static_cast<E>(value + caseDistance) : value;
}

template <class E>
constexpr E toUpper(E value) {
    return value >= 'a' && value <= 'z' ? static_cast<E>(value - caseDistance) : value;
}

/// The same for every lane. Lower and upper case differ in one bit, so the change is an exclusive or.
template <class E>
Vector<E> toggle(Vector<E> values, E first, E last) {
    return values ^ (PartialRange<E>(first, last).contains(values) & Vector<E>::splat(caseDistance));
}
template <class E>
Vector<E> toLower(Vector<E> values) {
    return toggle<E>(values, 'A', 'Z');
}
template <class E>
Vector<E> toUpper(Vector<E> values) {
    return toggle<E>(values, 'a', 'z');
}

} // namespace tav::latin
