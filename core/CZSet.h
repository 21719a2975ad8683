#pragma once
// The settings store: CZSet holds named collections (CZSetCol), a collection
// holds named objects (CZSetObj), and an object holds typed items (key and
// value, in the order they were stored) and free text lines.
//
// A saving class has one operation, Settings(CZSetObj&), that calls Item for
// each of its fields: on a storing object the call records the field, on a
// loading object it sets the field from the stored value. Data adds free text
// lines when storing; a loading class walks m_data itself.
//
// The whole store goes to and from a UTF-8 JSON text file that a user can
// read and edit (CZSet::Save, CZSet::Load):
//
//   {
//     "format": "ZanData settings",
//     "version": 1,
//     "collections": [
//       { "name": "Filter",
//         "objects": [
//           { "name": "Main", "text": "",
//             "items": [ { "key": "FltBias", "type": "f64", "value": 0.5 },
//                        { "key": "FltName", "type": "string", "value": "Filter" } ],
//             "data": [ "0.100000", "1.000000" ] } ] } ]
//   }
//
// Item types are the archive's primitive names: "u8", "i16", "u16", "i32",
// "u32", "f32", "f64", "string", and "ptr" for a pointer recorded by name.
// Floating values are written so that they read back to the same bits; the
// non-finite ones are written as the strings "nan", "inf" and "-inf".
//
// The store takes no lock: a store belongs to one thread at a time.
#include "core/CList_Mgd.h"
#include "core/platform/CString.h"
#include "core/platform/Types.h"

#include <string>
#include <vector>

class CZSetObj {
public:
    // Kinds of item, one for each Item overload.
    enum Type { U8, I16, U16, I32, U32, F32, F64, Str, Ptr };

    // One stored value. Integers of every width live in m_n, floats in m_d
    // (an f32 exactly widened), strings and pointer names in m_str.
    struct CItem {
        CString m_key;
        Type m_type = I32;
        long long m_n = 0;
        double m_d = 0.0;
        CString m_str;
    };

    CString m_strName;           // the object's name, by which hosts find it again
    CString m_strText;           // the description given to CZSetCol::AddObj
    CList_Mgd<CString> m_data;   // free text lines in order; elements are CString*
    std::vector<CItem> m_items;  // items in the order first stored

    // A new, empty object, storing.
    CZSetObj() = default;
    CZSetObj(const CString& name, const CString& text) : m_strName(name), m_strText(text) {}
    virtual ~CZSetObj() = default;
    CZSetObj(const CZSetObj& src) { *this = src; }
    // Copies name, text, direction, items and lines.
    CZSetObj& operator=(const CZSetObj& src);

    // The direction: exactly one of the two is non-zero.
    int IsStoring() const { return m_bStoring ? 1 : 0; }
    int IsLoading() const { return m_bStoring ? 0 : 1; }
    // Turns the object round. Objects made by AddObj or the constructor are
    // storing; objects read by CZSet::Load are loading.
    void SetStoring() { m_bStoring = true; }
    void SetLoading() { m_bStoring = false; }

    // Storing: records v under key. A key already stored with the same type is
    // overwritten in place, so storing twice into one object changes nothing;
    // the same key with another type is a second item (a class may bind one
    // key to two fields of different types, and both survive).
    // Loading: sets v from the item of that key and type, or failing that from
    // the first item of that key whose value converts to v's type without loss
    // of range (numbers into numbers, text into text). A key that isn't there,
    // or a value that doesn't fit, leaves v alone: callers set their defaults
    // before loading.
    void Item(const CString& key, unsigned char& v);
    void Item(const CString& key, short& v);
    void Item(const CString& key, unsigned short& v);
    void Item(const CString& key, int& v);
    void Item(const CString& key, unsigned long& v);
    void Item(const CString& key, float& v);
    void Item(const CString& key, double& v);
    void Item(const CString& key, CString& v);
    // A pointer recorded by name. Storing records name(p) when a name function
    // is given; without one, a null pointer records "" and another pointer its
    // address as "0x..." text (meaningful only within one run). Loading calls
    // lookup with the recorded text and stores what it returns, null included;
    // without the key, or with a null lookup, p is left alone.
    void Item(const CString& key, void*& p, void* (*lookup)(const CString&),
              CString (*name)(const void*) = nullptr);

    // Storing: appends one free text line made by the printf format (wide
    // strings; see CString::Format). Loading: does nothing.
    template <class... A>
    void Data(const CString& fmt, const A&... args)
    {
        if (m_bStoring) AddLine(CString::Fmt(fmt, args...));
    }
    // Appends a line as it is, in either direction.
    void AddLine(const CString& line);
    // The number of free text lines.
    int GetDataCount() const { return m_data.GetCount(); }

    // The item of that key (the first one, whatever its type), or null.
    const CItem* FindItem(const CString& key) const;
    // Forgets every item and every line; name, text and direction stay.
    void Clear();

private:
    CItem& Put(const CString& key, Type type);
    const CItem* Get(const CString& key, Type type) const;
    template <class T>
    void IntItem(const CString& key, Type type, T& v);
    template <class T>
    void RealItem(const CString& key, Type type, T& v);

    bool m_bStoring = true;
};

// A named collection of objects, walked as a CList_Mgd<CZSetObj>.
class CZSetCol : public CList_Mgd<CZSetObj> {
public:
    CString m_strName;

    CZSetCol() = default;
    explicit CZSetCol(const CString& name) : m_strName(name) {}
    CZSetCol(const CZSetCol& src) : CList_Mgd<CZSetObj>() { *this = src; }
    // Copies the name and every object.
    CZSetCol& operator=(const CZSetCol& src)
    {
        m_strName = src.m_strName;
        CList_Mgd<CZSetObj>::operator=(src);
        return *this;
    }

    // Appends a new storing object of that name and description and returns
    // it; names may repeat. The collection owns it.
    CZSetObj* AddObj(const CString& name, const CString& text);
    // The first object of that name (exact comparison), or null.
    CZSetObj* GetObj(const CString& name) const;
};

// The store: named collections, saved to and loaded from one file.
class CZSet {
public:
    CList_Mgd<CZSetCol> m_cols;  // collections in order
    CString m_strError;          // why the last Save or Load failed; empty after success

    CZSet() = default;
    virtual ~CZSet() = default;
    CZSet(const CZSet& src) { *this = src; }
    CZSet& operator=(const CZSet& src)
    {
        m_cols = src.m_cols;
        m_strError = src.m_strError;
        return *this;
    }

    // The first collection of that name (exact comparison); null if none.
    CZSetCol* GetCol(const CString& name) const;
    // A collection of that name to store into. An existing one of the same
    // name is emptied and returned, so that saving a class's objects again
    // replaces them rather than piling up a second collection.
    CZSetCol* AddCol(const CString& name);
    // Removes every collection.
    void RemoveAll() { m_cols.RemoveAll(); }

    // Writes the whole store to `path` (a UTF-8 JSON file, see above), through
    // a temporary file beside it so that a failed write leaves the old file.
    // TRUE on success; on failure m_strError says why and a Console line
    // "Settings: ..." reports it.
    BOOL Save(const CString& path);
    // Replaces the store with the content of `path`; every object read is
    // loading. The file is checked whole before anything changes: a missing,
    // unreadable or damaged file (bad JSON, a wrong structure, an unknown item
    // type, a value that doesn't fit its type) returns FALSE, leaves the store
    // as it was, sets m_strError to the reason (with the item or line at
    // fault) and reports it with a Console line "Settings: ...". Objects that
    // are then loaded from the unchanged store keep their defaults.
    BOOL Load(const CString& path);

    // The same as text, for hosts that keep settings elsewhere.
    CString ToText() const;
    BOOL FromText(const CString& text);

private:
    BOOL Fail(const CString& why);
};
