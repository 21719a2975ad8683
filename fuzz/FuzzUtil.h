#pragma once
// Helpers of the fuzz entries: archives over the fuzzer's bytes, stored
// records as bytes, and the checks whose failure is a finding.
//
// An entry runs one loader on arbitrary bytes. The loader may accept them or
// refuse them with CArchiveException, which is how a damaged record is meant
// to end. Anything else (a crash, a sanitizer report, another exception, an
// allocation beyond the fuzzer's limit, a failed Check) is a finding.
#include <zandata/ZanData.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zanfuzz {

using Bytes = std::vector<BYTE>;

// Reports a broken property and aborts, so that the fuzzer keeps the input.
[[noreturn]] void Fail(const std::string& what);

inline void Check(bool ok, const char* what)
{
    if (!ok) Fail(what);
}

// Runs read(ar) on a loading archive over a copy of [p, p + n). True when the
// loader accepted the bytes; false when it raised CArchiveException. *pLeft,
// if given, gets the bytes left unread after an accepted load.
template <class F>
bool Load(const uint8_t* p, size_t n, F&& read, size_t* pLeft = nullptr)
{
    // A copy, so a loader that wrote to its input could not touch the fuzzer's.
    Bytes data(p, p + n);
    CMemFile file(data.data(), static_cast<UINT>(data.size()));
    CArchive ar(&file, CArchive::load);
    try {
        read(ar);
    } catch (const CArchiveException&) {
        return false;
    }
    if (pLeft) *pLeft = static_cast<size_t>(ar.GetRemaining());
    return true;
}

inline bool Load(const Bytes& b, auto&& read, size_t* pLeft = nullptr)
{
    return Load(b.data(), b.size(), read, pLeft);
}

// The bytes that write(ar) stores.
template <class F>
Bytes Store(F&& write)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        write(ar);
        ar.Close();
    }
    const BYTE* p = file.GetBuffer();
    return Bytes(p, p + file.GetLength());
}

// The property every loader owes its own output: what it stored from a loaded
// object loads again, without an exception, and stores the same bytes.
// `fresh` makes the object to reload into.
template <class MakeObj, class LoadFn, class StoreFn>
void CheckStable(const Bytes& stored, MakeObj&& fresh, LoadFn&& load, StoreFn&& store, const char* what)
{
    auto obj = fresh();
    size_t left = 0;
    if (!Load(stored, [&](CArchive& ar) { load(*obj, ar); }, &left))
        Fail(std::string(what) + ": its own record does not load again");
    if (left != 0) Fail(std::string(what) + ": its own record loads short of its end");
    if (Store([&](CArchive& ar) { store(*obj, ar); }) != stored)
        Fail(std::string(what) + ": a reloaded record stores other bytes");
}

// Loads records one after another from one archive over [p, p + n) until the
// bytes are used up or the loader refuses one; after each accepted record
// done(rec) gets the bytes that record took. Loading into the same objects
// again and again is how a recycled object meets a damaged record.
template <class F, class G>
void LoadEach(const uint8_t* p, size_t n, F&& read, G&& done)
{
    Bytes data(p, p + n);
    CMemFile file(data.data(), static_cast<UINT>(data.size()));
    CArchive ar(&file, CArchive::load);
    for (size_t at = 0; at < n;) {
        try {
            read(ar);
        } catch (const CArchiveException&) {
            return;
        }
        const size_t next = n - static_cast<size_t>(ar.GetRemaining());
        if (next <= at) Fail("a record took no byte");
        done(Bytes(data.begin() + at, data.begin() + next));
        at = next;
    }
}

// Reads a value from the front of the input (zero when it runs out) and
// consumes it; for the entries' mode bytes.
struct Input {
    const uint8_t* p;
    size_t n;
    BYTE Byte()
    {
        if (n == 0) return 0;
        --n;
        return *p++;
    }
};

}  // namespace zanfuzz
