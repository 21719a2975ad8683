#include "GlRec.h"

#include <GL/gl.h>

#include <algorithm>
#include <initializer_list>
#include <mutex>

namespace glrec {
namespace {

struct State {
    std::mutex lock;
    std::vector<Call> log;
    GLuint nextTex = 1;
    GLuint nextList = 1;
};

State& S()
{
    static State s;
    return s;
}

Call& Rec(const char* fn, std::initializer_list<double> a, const void* p = nullptr)
{
    State& s = S();
    std::lock_guard<std::mutex> g(s.lock);
    s.log.push_back(Call {fn, std::vector<double>(a), p, {}});
    return s.log.back();
}

} // namespace

void Reset()
{
    State& s = S();
    std::lock_guard<std::mutex> g(s.lock);
    s.log.clear();
    s.nextTex = 1;
    s.nextList = 1;
}

const std::vector<Call>& Log() { return S().log; }

std::vector<Call> Calls(const std::string& fn)
{
    std::vector<Call> out;
    for (const Call& c : S().log)
        if (c.fn == fn) out.push_back(c);
    return out;
}

std::size_t Count(const std::string& fn)
{
    return static_cast<std::size_t>(
        std::count_if(S().log.begin(), S().log.end(), [&](const Call& c) { return c.fn == fn; }));
}

std::vector<std::string> Names()
{
    std::vector<std::string> out;
    for (const Call& c : S().log) out.push_back(c.fn);
    return out;
}

const std::vector<std::string>& Defined()
{
    static const std::vector<std::string> names = {
        "glBegin", "glBindTexture", "glBitmap", "glCallList", "glClear", "glClearColor", "glClearDepth",
        "glColor4f", "glColor4ub", "glColor4ubv", "glDeleteLists", "glDeleteTextures", "glDisable", "glEnable",
        "glEnd", "glEndList", "glFinish", "glGenLists", "glGenTextures", "glGetString", "glLineWidth", "glLoadIdentity",
        "glMatrixMode", "glNewList", "glNormal3dv", "glOrtho", "glPixelStorei", "glPointSize", "glPopAttrib",
        "glPopClientAttrib", "glPopMatrix", "glPushAttrib", "glPushClientAttrib", "glPushMatrix",
        "glRasterPos3d", "glRotated", "glScaled", "glTexCoord2d", "glTexEnvi", "glTexImage2D",
        "glTexParameteri", "glTranslated", "glVertex3d", "glVertex3dv", "glViewport",
    };
    return names;
}

} // namespace glrec

using glrec::Call;
using glrec::Rec;

extern "C" {

void glBegin(GLenum mode) { Rec("glBegin", {double(mode)}); }
void glEnd() { Rec("glEnd", {}); }
void glEnable(GLenum cap) { Rec("glEnable", {double(cap)}); }
void glDisable(GLenum cap) { Rec("glDisable", {double(cap)}); }
void glFinish() { Rec("glFinish", {}); }
// The layer stands for a current context.
const GLubyte* glGetString(GLenum name)
{
    Rec("glGetString", {double(name)});
    static const GLubyte kText[] = "glrec";
    return kText;
}

void glGenTextures(GLsizei n, GLuint* textures)
{
    Rec("glGenTextures", {double(n)});
    auto& s = glrec::S();
    std::lock_guard<std::mutex> g(s.lock);
    for (GLsizei i = 0; i < n; ++i) textures[i] = s.nextTex++;
}
void glDeleteTextures(GLsizei n, const GLuint* textures)
{
    Call& c = Rec("glDeleteTextures", {double(n)});
    for (GLsizei i = 0; i < n; ++i) c.a.push_back(textures[i]);
}
void glBindTexture(GLenum target, GLuint texture) { Rec("glBindTexture", {double(target), double(texture)}); }
void glTexEnvi(GLenum target, GLenum pname, GLint param)
{
    Rec("glTexEnvi", {double(target), double(pname), double(param)});
}
void glTexParameteri(GLenum target, GLenum pname, GLint param)
{
    Rec("glTexParameteri", {double(target), double(pname), double(param)});
}
void glPixelStorei(GLenum pname, GLint param) { Rec("glPixelStorei", {double(pname), double(param)}); }
void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                  GLenum format, GLenum type, const GLvoid* pixels)
{
    Call& c = Rec("glTexImage2D", {double(target), double(level), double(internalFormat), double(width),
                                   double(height), double(border), double(format), double(type)},
                  pixels);
    if (pixels && format == GL_RGBA && type == GL_UNSIGNED_BYTE && width > 0 && height > 0) {
        const auto* b = static_cast<const unsigned char*>(pixels);
        c.data.assign(b, b + static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    }
}

void glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) { Rec("glColor4f", {r, g, b, a}); }
void glColor4ub(GLubyte r, GLubyte g, GLubyte b, GLubyte a)
{
    Rec("glColor4ub", {double(r), double(g), double(b), double(a)});
}
void glColor4ubv(const GLubyte* v) { Rec("glColor4ubv", {double(v[0]), double(v[1]), double(v[2]), double(v[3])}); }
void glTexCoord2d(GLdouble s, GLdouble t) { Rec("glTexCoord2d", {s, t}); }
void glVertex3d(GLdouble x, GLdouble y, GLdouble z) { Rec("glVertex3d", {x, y, z}); }
void glVertex3dv(const GLdouble* v) { Rec("glVertex3dv", {v[0], v[1], v[2]}); }
void glNormal3dv(const GLdouble* v) { Rec("glNormal3dv", {v[0], v[1], v[2]}); }
void glPointSize(GLfloat size) { Rec("glPointSize", {size}); }
void glLineWidth(GLfloat width) { Rec("glLineWidth", {width}); }

void glPushMatrix() { Rec("glPushMatrix", {}); }
void glPopMatrix() { Rec("glPopMatrix", {}); }
void glMatrixMode(GLenum mode) { Rec("glMatrixMode", {double(mode)}); }
void glLoadIdentity() { Rec("glLoadIdentity", {}); }
void glOrtho(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f)
{
    Rec("glOrtho", {l, r, b, t, n, f});
}
void glTranslated(GLdouble x, GLdouble y, GLdouble z) { Rec("glTranslated", {x, y, z}); }
void glRotated(GLdouble angle, GLdouble x, GLdouble y, GLdouble z) { Rec("glRotated", {angle, x, y, z}); }
void glScaled(GLdouble x, GLdouble y, GLdouble z) { Rec("glScaled", {x, y, z}); }
void glViewport(GLint x, GLint y, GLsizei w, GLsizei h) { Rec("glViewport", {double(x), double(y), double(w), double(h)}); }

void glClear(GLbitfield mask) { Rec("glClear", {double(mask)}); }
void glClearColor(GLclampf r, GLclampf g, GLclampf b, GLclampf a) { Rec("glClearColor", {r, g, b, a}); }
void glClearDepth(GLclampd d) { Rec("glClearDepth", {d}); }

GLuint glGenLists(GLsizei range)
{
    Rec("glGenLists", {double(range)});
    auto& s = glrec::S();
    std::lock_guard<std::mutex> g(s.lock);
    const GLuint first = s.nextList;
    s.nextList += static_cast<GLuint>(range);
    return first;
}
void glNewList(GLuint list, GLenum mode) { Rec("glNewList", {double(list), double(mode)}); }
void glEndList() { Rec("glEndList", {}); }
void glCallList(GLuint list) { Rec("glCallList", {double(list)}); }
void glDeleteLists(GLuint list, GLsizei range) { Rec("glDeleteLists", {double(list), double(range)}); }

void glPushAttrib(GLbitfield mask) { Rec("glPushAttrib", {double(mask)}); }
void glPopAttrib() { Rec("glPopAttrib", {}); }
void glPushClientAttrib(GLbitfield mask) { Rec("glPushClientAttrib", {double(mask)}); }
void glPopClientAttrib() { Rec("glPopClientAttrib", {}); }
void glRasterPos3d(GLdouble x, GLdouble y, GLdouble z) { Rec("glRasterPos3d", {x, y, z}); }
void glBitmap(GLsizei width, GLsizei height, GLfloat xorig, GLfloat yorig, GLfloat xmove, GLfloat ymove,
              const GLubyte* bitmap)
{
    Rec("glBitmap", {double(width), double(height), xorig, yorig, xmove, ymove}, bitmap);
}

} // extern "C"
