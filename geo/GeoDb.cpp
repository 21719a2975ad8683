// The database members of Geo: the record lists, the GeoDB.csv reader and
// writer, and the look-ups.
#include "geo/Geo.h"

#include "core/platform/CFile.h"
#include "core/platform/ML.h"
#include "core/platform/Zan.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

CList_Mgd<CSphd> Geo::sphds;
CList_Mgd<CProj> Geo::projs;
CList_Mgd<CShft> Geo::shfts;

namespace {

// A database line holds at most this many characters, terminator included;
// the tail of a longer line is read as a line of its own.
constexpr int kLineChars = 1024;
// The same line as UTF-8: at most three bytes for each 16-bit unit.
constexpr int kLineBytes = 3 * kLineChars + 1;

// UTF-16 text (null-terminated) to UTF-8 in a fixed buffer, for the narrow
// scanf formats; stops at the buffer's end.
void ToUtf8(LPCTSTR s, char (&out)[kLineBytes])
{
    int n = 0;
    auto put = [&](unsigned v) {
        if (n < kLineBytes - 1) out[n++] = static_cast<char>(v);
    };
    for (; *s && n < kLineBytes - 4; ++s) {
        unsigned c = *s;
        if (c >= 0xD800 && c < 0xDC00 && s[1] >= 0xDC00 && s[1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (s[1] - 0xDC00);
            ++s;
        }
        if (c < 0x80) {
            put(c);
        } else if (c < 0x800) {
            put(0xC0 | (c >> 6)); put(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            put(0xE0 | (c >> 12)); put(0x80 | ((c >> 6) & 0x3F)); put(0x80 | (c & 0x3F));
        } else {
            put(0xF0 | (c >> 18)); put(0x80 | ((c >> 12) & 0x3F)); put(0x80 | ((c >> 6) & 0x3F));
            put(0x80 | (c & 0x3F));
        }
    }
    out[n] = 0;
}

// Appends `rec` to `list` unless an equal record is there already.
template <class T, class Find>
void Merge(CList_Mgd<T>& list, std::unique_ptr<T> rec, Find find)
{
    if (!find(*rec)) list.AddTail(rec.release());
}

CString TrimmedName(const char* name)
{
    CString s = CString::FromUtf8(name);
    s.Trim();
    return s;
}

template <class T>
T* FindEqual(const CList_Mgd<T>& list, const T& rec)
{
    for (CZanPtr* pos = list.GetHeadPos(); pos;) {
        T* p = list.GetNext(pos);
        if (*p == rec) return p;
    }
    return nullptr;
}

template <class T>
T* FindNamed(const CList_Mgd<T>& list, const CString& name)
{
    for (CZanPtr* pos = list.GetHeadPos(); pos;) {
        T* p = list.GetNext(pos);
        if (p->m_name.Compare(name) == 0) return p;
    }
    return nullptr;
}

} // namespace

int Geo::MergeDbLine(LPCTSTR line)
{
    if (line[0] == u'%') return 1;
    char text[kLineBytes];
    ToUtf8(line, text);
    char name[kLineBytes];  // never shorter than the line, so %[ cannot overrun it
    double v[7];

    if (std::sscanf(text, "SPHD,%[^,],%lf,%lf,%lf,%lf", name, &v[0], &v[1], &v[2], &v[3]) == 5) {
        auto p = std::make_unique<CSphd>();
        p->m_name = TrimmedName(name);
        p->m_semiMinor = v[0];
        p->m_semiMajor = v[1];
        p->m_ecc2 = v[2];
        p->m_invFlat = v[3];
        Merge(sphds, std::move(p), FindSphd);
        return 1;
    }
    if (std::sscanf(text, "PROJ,%[^,],%lf,%lf,%lf,%lf,%lf", name, &v[0], &v[1], &v[2], &v[3], &v[4]) == 6) {
        auto p = std::make_unique<CProj>();
        p->m_name = TrimmedName(name);
        p->m_falseEast = v[0];
        p->m_falseNorth = v[1];
        p->m_lonOrigin = v[2] * ML::d2r;
        p->m_latOrigin = v[3] * ML::d2r;
        p->m_scale = v[4];
        Merge(projs, std::move(p), FindProj);
        return 1;
    }
    if (std::sscanf(text, "SHIFT,%[^,],%lf,%lf,%lf,%lf,%lf,%lf,%lf", name, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5],
                    &v[6]) == 8) {
        auto p = std::make_unique<CShft>();
        p->m_name = TrimmedName(name);
        p->m_dX = v[0];
        p->m_dY = v[1];
        p->m_dZ = v[2];
        p->m_rotX = v[3];
        p->m_rotY = v[4];
        p->m_rotZ = v[5];
        p->m_ppm = v[6];
        Merge(shfts, std::move(p), FindShft);
        return 1;
    }

    // Reported without its line end, which is not part of the text.
    CString shown(line);
    while (shown.GetLength() > 0 && (shown[shown.GetLength() - 1] == u'\n' || shown[shown.GetLength() - 1] == u'\r'))
        shown = shown.Left(shown.GetLength() - 1);
    Zan::Console(0, u"Geo: Unrecognised string %s", shown);
    return 0;
}

void Geo::MergeDbText(const CString& text)
{
    // Pieces of at most kLineChars-1 characters, as the file reader gets
    // them; an empty text is one (unrecognised) empty line.
    const int n = text.GetLength();
    int at = 0;
    do {
        const int len = n - at < kLineChars - 1 ? n - at : kLineChars - 1;
        const CString piece = text.Mid(at, len);
        MergeDbLine(piece);
        at += len;
    } while (at < n);
}

void Geo::ReadDb(const CString& path)
{
    CStdioFile file;
    if (!file.Open(path, CFile::modeRead | CFile::typeText)) {
        Zan::Console(0, u"Geo: Unable to open %s", path);
        return;
    }
    char16_t line[kLineChars];
    try {
        while (file.ReadString(line, kLineChars)) MergeDbLine(line);
    } catch (const CFileException&) {
        // A read error ends the file, as the end of the file would: what was
        // merged stays.
    }
    file.Close();
}

void Geo::DbLines(void (*put)(void* ctx, const CString& line), void* ctx)
{
    put(ctx, CString::Fmt(u"%% -- SPHEROIDS --"));
    put(ctx, CString::Fmt(u"%% SPHD, Name, Semi_Minor, Semi_Major, Eccentricity, Flattening"));
    for (CZanPtr* pos = sphds.GetHeadPos(); pos;) {
        const CSphd* p = sphds.GetNext(pos);
        put(ctx, CString::Fmt(u"SPHD, %s, %0.14lg, %0.14lg, %0.14lg, %0.14lg", p->m_name, p->m_semiMinor,
                              p->m_semiMajor, p->m_ecc2, p->m_invFlat));
    }
    put(ctx, CString::Fmt(u"%% -- PROJECTIONS --"));
    put(ctx, CString::Fmt(
                 u"%% PROJ, Name, False_East, False_North, Longitude_Origin, Latitude_Origin, Scale_Factor_on_CM"));
    for (CZanPtr* pos = projs.GetHeadPos(); pos;) {
        const CProj* p = projs.GetNext(pos);
        put(ctx, CString::Fmt(u"PROJ, %s, %0.14lg, %0.14lg, %0.14lg, %0.14lg, %0.14lg", p->m_name, p->m_falseEast,
                              p->m_falseNorth, p->m_lonOrigin * ML::r2d, p->m_latOrigin * ML::r2d, p->m_scale));
    }
    put(ctx, CString::Fmt(u"%% -- DATUM SHIFTS --"));
    put(ctx, CString::Fmt(u"%% SHIFT, Name, X, Y, Z, AX, AY, AZ, Scale"));
    for (CZanPtr* pos = shfts.GetHeadPos(); pos;) {
        const CShft* p = shfts.GetNext(pos);
        put(ctx, CString::Fmt(u"SHIFT, %s, %0.14lg, %0.14lg, %0.14lg, %0.14lg, %0.14lg, %0.14lg, %0.14lg", p->m_name,
                              p->m_dX, p->m_dY, p->m_dZ, p->m_rotX, p->m_rotY, p->m_rotZ, p->m_ppm));
    }
}

void Geo::WriteDb(const CString& path)
{
    CStdioFile file;
    if (!file.Open(path, CFile::modeCreate | CFile::modeWrite | CFile::typeText)) {
        Zan::Console(0, u"Geo: Unable to open %s", path);
        return;
    }
    try {
        DbLines(
            [](void* ctx, const CString& line) {
                auto* f = static_cast<CStdioFile*>(ctx);
                f->WriteString(line);
                f->WriteString(u"\n");
            },
            &file);
        file.Close();
    } catch (const CFileException&) {
        // A full disk or a lost device: the library reports, it doesn't throw.
        file.Abort();
        Zan::Console(0, u"Geo: Unable to open %s", path);
    }
}

void Geo::ClearDb()
{
    sphds.RemoveAll();
    projs.RemoveAll();
    shfts.RemoveAll();
    pSphdP = nullptr;
    pProjP = nullptr;
    pSphdS = nullptr;
    pProjS = nullptr;
    pShift = nullptr;
}

CSphd* Geo::FindSphd(const CSphd& rec) { return FindEqual(sphds, rec); }
CProj* Geo::FindProj(const CProj& rec) { return FindEqual(projs, rec); }
CShft* Geo::FindShft(const CShft& rec) { return FindEqual(shfts, rec); }
CSphd* Geo::GetSphd(const CString& name) { return FindNamed(sphds, name); }
CProj* Geo::GetProj(const CString& name) { return FindNamed(projs, name); }
CShft* Geo::GetShft(const CString& name) { return FindNamed(shfts, name); }

CString Geo::DefaultDbPath()
{
    namespace fs = std::filesystem;
    std::error_code ec;
    if (const char* dir = std::getenv("ZAN_DATA_DIR"); dir && *dir) {
        const fs::path p = fs::path(dir) / "GeoDB.csv";
        if (fs::exists(p, ec)) return CString::FromUtf8(p.string());
    }
    const fs::path installed = fs::path(ZAN_DATA_DIR) / "GeoDB.csv";
    if (fs::exists(installed, ec)) return CString::FromUtf8(installed.string());
    return CString::FromUtf8((fs::path(ZAN_SOURCE_DATA_DIR) / "GeoDB.csv").string());
}
