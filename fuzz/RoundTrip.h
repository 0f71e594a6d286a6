#pragma once

#include <cstdlib>
#include <iostream>

#include "Models/Protocol.h"

/// The property of every decoder: what it accepts comes back the same from its own encoding.
namespace corvellan::fuzz {

[[noreturn]] inline void fail(const char* what, const QByteArray& bytes) {
    std::cerr << what << ": " << bytes.toStdString() << '\n';
    std::abort();
}

template <typename T, typename Encode, typename Decode>
void expectRoundTrip(const T& value, Encode encode, Decode decode) {
    const QByteArray written = encode(value);
    const Decoded<T> again = decode(written);
    if (!again)
        fail("what was encoded does not decode", written);
    if (*again != value)
        fail("what was encoded decodes as something else", written);
    if (encode(*again) != written)
        fail("the same value is encoded in two ways", written);
}

/// An error must be able to speak, whatever it quotes.
inline void expectSentence(const Error& error) {
    if (error.errorDescription().isEmpty())
        fail("an error without a sentence", {});
}

}  // namespace corvellan::fuzz
