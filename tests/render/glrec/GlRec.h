#pragma once
// A recording OpenGL layer for call-sequence tests.
//
// GlRec.cpp defines the gl* functions that the library calls. Linked into a
// test program, they take the place of the system's (the executable's own
// definitions win over those that libzandata would take from Mesa), do no
// drawing, and append each call with its arguments to a log.
#include <cstddef>
#include <string>
#include <vector>

namespace glrec {

struct Call {
    std::string fn;                    // "glVertex3d"
    std::vector<double> a;             // numeric arguments in order; vector forms give their elements
    const void* p = nullptr;           // the data pointer of glTexImage2D and glBitmap
    std::vector<unsigned char> data;   // glTexImage2D: a copy of the pixels (RGBA bytes)
};

// Empties the log and restarts texture and list names at 1.
void Reset();
const std::vector<Call>& Log();
// The calls of one function, in order.
std::vector<Call> Calls(const std::string& fn);
std::size_t Count(const std::string& fn);
// The function names of the log, in order, for readable failure messages.
std::vector<std::string> Names();
// The names of the functions that the layer defines.
const std::vector<std::string>& Defined();

} // namespace glrec
