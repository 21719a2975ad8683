#include "core/CZSet.h"

#include "core/platform/Zan.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>

using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kFormat = "ZanData settings";
constexpr int kVersion = 1;

struct TypeInfo {
    const char* name;
    long long lo;
    long long hi;
};

// Names and integer ranges by CZSetObj::Type.
constexpr TypeInfo kTypes[] = {
    {"u8", 0, 255},
    {"i16", -32768, 32767},
    {"u16", 0, 65535},
    {"i32", -2147483648LL, 2147483647LL},
    {"u32", 0, 4294967295LL},
    {"f32", 0, 0},
    {"f64", 0, 0},
    {"string", 0, 0},
    {"ptr", 0, 0},
};

bool IsInt(CZSetObj::Type t) { return t <= CZSetObj::U32; }
bool IsReal(CZSetObj::Type t) { return t == CZSetObj::F32 || t == CZSetObj::F64; }
bool IsText(CZSetObj::Type t) { return t == CZSetObj::Str || t == CZSetObj::Ptr; }

// A parse failure with the place where it happened.
struct BadFile : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Json RealToJson(double d)
{
    if (std::isnan(d)) return "nan";
    if (std::isinf(d)) return d > 0 ? "inf" : "-inf";
    return d;
}

// An f32 as the shortest decimal that reads back to the same float, so that
// 0.1f shows as 0.1 rather than as its widened double.
Json FloatToJson(float f)
{
    if (!std::isfinite(f)) return RealToJson(f);
    char buf[64];
    auto res = std::to_chars(buf, buf + sizeof buf, f);
    return std::strtod(std::string(buf, res.ptr).c_str(), nullptr);
}

std::string Where(std::size_t c, std::size_t o, std::size_t i)
{
    return "collection " + std::to_string(c) + ", object " + std::to_string(o) + ", item " + std::to_string(i);
}

CZSetObj::CItem ItemFromJson(const Json& j, const std::string& where)
{
    if (!j.is_object()) throw BadFile(where + ": not an object");
    auto key = j.find("key");
    auto type = j.find("type");
    auto value = j.find("value");
    if (key == j.end() || !key->is_string()) throw BadFile(where + ": \"key\" missing or not text");
    if (type == j.end() || !type->is_string()) throw BadFile(where + ": \"type\" missing or not text");
    if (value == j.end()) throw BadFile(where + ": \"value\" missing");
    const std::string k = key->get<std::string>();
    const std::string tn = type->get<std::string>();
    const std::string at = where + " (\"" + k + "\")";

    CZSetObj::CItem it;
    it.m_key = CString::FromUtf8(k);
    int t = -1;
    for (int i = 0; i < static_cast<int>(std::size(kTypes)); ++i)
        if (tn == kTypes[i].name) t = i;
    if (t < 0) throw BadFile(at + ": unknown type \"" + tn + "\"");
    it.m_type = static_cast<CZSetObj::Type>(t);

    if (IsInt(it.m_type)) {
        long long n = 0;
        if (value->is_number_unsigned()) {
            const auto u = value->get<unsigned long long>();
            if (u > static_cast<unsigned long long>(kTypes[t].hi)) throw BadFile(at + ": value out of range for " + tn);
            n = static_cast<long long>(u);
        } else if (value->is_number_integer()) {
            n = value->get<long long>();
        } else {
            throw BadFile(at + ": value is not a whole number");
        }
        if (n < kTypes[t].lo || n > kTypes[t].hi) throw BadFile(at + ": value out of range for " + tn);
        it.m_n = n;
    } else if (IsReal(it.m_type)) {
        double d = 0.0;
        if (value->is_number()) {
            d = value->get<double>();
        } else if (value->is_string()) {
            const std::string s = value->get<std::string>();
            if (s == "nan") d = std::numeric_limits<double>::quiet_NaN();
            else if (s == "inf") d = std::numeric_limits<double>::infinity();
            else if (s == "-inf") d = -std::numeric_limits<double>::infinity();
            else throw BadFile(at + ": value is not a number");
        } else {
            throw BadFile(at + ": value is not a number");
        }
        if (it.m_type == CZSetObj::F32 && std::isfinite(d) &&
            std::fabs(d) > static_cast<double>(std::numeric_limits<float>::max()))
            throw BadFile(at + ": value out of range for f32");
        it.m_d = it.m_type == CZSetObj::F32 ? static_cast<double>(static_cast<float>(d)) : d;
    } else {
        if (!value->is_string()) throw BadFile(at + ": value is not text");
        it.m_str = CString::FromUtf8(value->get<std::string>());
    }
    return it;
}

Json ItemToJson(const CZSetObj::CItem& it)
{
    Json j;
    j["key"] = it.m_key.Utf8();
    j["type"] = kTypes[it.m_type].name;
    if (IsInt(it.m_type)) j["value"] = it.m_n;
    else if (it.m_type == CZSetObj::F32) j["value"] = FloatToJson(static_cast<float>(it.m_d));
    else if (IsReal(it.m_type)) j["value"] = RealToJson(it.m_d);
    else j["value"] = it.m_str.Utf8();
    return j;
}

const Json& Member(const Json& j, const char* name, const std::string& where)
{
    auto m = j.find(name);
    if (m == j.end()) throw BadFile(where + ": \"" + name + "\" missing");
    return *m;
}

std::string TextMember(const Json& j, const char* name, const std::string& where)
{
    auto m = j.find(name);
    if (m == j.end()) return {};
    if (!m->is_string()) throw BadFile(where + ": \"" + name + "\" is not text");
    return m->get<std::string>();
}

// Builds a whole store from parsed JSON, or throws BadFile.
void StoreFromJson(const Json& root, CZSet& out)
{
    if (!root.is_object()) throw BadFile("the file is not a JSON object");
    auto fmt = root.find("format");
    if (fmt == root.end() || !fmt->is_string() || fmt->get<std::string>() != kFormat)
        throw BadFile(std::string("not a settings file (\"format\" must be \"") + kFormat + "\")");
    auto ver = root.find("version");
    if (ver == root.end() || !ver->is_number_integer() || ver->get<long long>() != kVersion)
        throw BadFile("unsupported \"version\" (this build reads version " + std::to_string(kVersion) + ")");
    const Json& cols = Member(root, "collections", "top level");
    if (!cols.is_array()) throw BadFile("\"collections\" is not a list");

    for (std::size_t c = 0; c < cols.size(); ++c) {
        const std::string wc = "collection " + std::to_string(c);
        const Json& jc = cols[c];
        if (!jc.is_object()) throw BadFile(wc + ": not an object");
        auto* pCol = new CZSetCol(CString::FromUtf8(TextMember(jc, "name", wc)));
        out.m_cols.AddTail(pCol);
        auto objs = jc.find("objects");
        if (objs == jc.end()) continue;
        if (!objs->is_array()) throw BadFile(wc + ": \"objects\" is not a list");
        for (std::size_t o = 0; o < objs->size(); ++o) {
            const std::string wo = wc + ", object " + std::to_string(o);
            const Json& jo = (*objs)[o];
            if (!jo.is_object()) throw BadFile(wo + ": not an object");
            CZSetObj* pObj = pCol->AddObj(CString::FromUtf8(TextMember(jo, "name", wo)),
                                          CString::FromUtf8(TextMember(jo, "text", wo)));
            pObj->SetLoading();
            if (auto items = jo.find("items"); items != jo.end()) {
                if (!items->is_array()) throw BadFile(wo + ": \"items\" is not a list");
                for (std::size_t i = 0; i < items->size(); ++i)
                    pObj->m_items.push_back(ItemFromJson((*items)[i], Where(c, o, i)));
            }
            if (auto data = jo.find("data"); data != jo.end()) {
                if (!data->is_array()) throw BadFile(wo + ": \"data\" is not a list");
                for (std::size_t l = 0; l < data->size(); ++l) {
                    if (!(*data)[l].is_string()) throw BadFile(wo + ", data line " + std::to_string(l) + ": not text");
                    pObj->AddLine(CString::FromUtf8((*data)[l].get<std::string>()));
                }
            }
        }
    }
}

Json StoreToJson(const CZSet& set)
{
    Json root;
    root["format"] = kFormat;
    root["version"] = kVersion;
    Json cols = Json::array();
    for (CZanPtr* pc = set.m_cols.GetHeadPos(); pc;) {
        const CZSetCol* pCol = set.m_cols.GetNext(pc);
        Json jc;
        jc["name"] = pCol->m_strName.Utf8();
        Json objs = Json::array();
        for (CZanPtr* po = pCol->GetHeadPos(); po;) {
            const CZSetObj* pObj = pCol->GetNext(po);
            Json jo;
            jo["name"] = pObj->m_strName.Utf8();
            jo["text"] = pObj->m_strText.Utf8();
            Json items = Json::array();
            for (const auto& it : pObj->m_items) items.push_back(ItemToJson(it));
            jo["items"] = std::move(items);
            Json data = Json::array();
            for (CZanPtr* pl = pObj->m_data.GetHeadPos(); pl;) data.push_back(pObj->m_data.GetNext(pl)->Utf8());
            jo["data"] = std::move(data);
            objs.push_back(std::move(jo));
        }
        jc["objects"] = std::move(objs);
        cols.push_back(std::move(jc));
    }
    root["collections"] = std::move(cols);
    return root;
}

}  // namespace

// ---------------------------------------------------------------- CZSetObj

CZSetObj& CZSetObj::operator=(const CZSetObj& src)
{
    if (this == &src) return *this;
    m_strName = src.m_strName;
    m_strText = src.m_strText;
    m_data = src.m_data;
    m_items = src.m_items;
    m_bStoring = src.m_bStoring;
    return *this;
}

void CZSetObj::AddLine(const CString& line) { m_data.AddTail(new CString(line)); }

void CZSetObj::Clear()
{
    m_items.clear();
    m_data.RemoveAll();
}

const CZSetObj::CItem* CZSetObj::FindItem(const CString& key) const
{
    for (const auto& it : m_items)
        if (it.m_key == key) return &it;
    return nullptr;
}

CZSetObj::CItem& CZSetObj::Put(const CString& key, Type type)
{
    for (auto& it : m_items)
        if (it.m_type == type && it.m_key == key) return it;
    CItem it;
    it.m_key = key;
    it.m_type = type;
    m_items.push_back(std::move(it));
    return m_items.back();
}

const CZSetObj::CItem* CZSetObj::Get(const CString& key, Type type) const
{
    const CItem* pAny = nullptr;
    for (const auto& it : m_items) {
        if (!(it.m_key == key)) continue;
        if (it.m_type == type) return &it;
        if (!pAny) pAny = &it;
    }
    return pAny;
}

template <class T>
void CZSetObj::IntItem(const CString& key, Type type, T& v)
{
    if (m_bStoring) {
        Put(key, type).m_n = static_cast<long long>(v);
        return;
    }
    const CItem* it = Get(key, type);
    if (!it) return;
    long long n = 0;
    if (IsInt(it->m_type)) {
        n = it->m_n;
    } else if (IsReal(it->m_type)) {
        // A number stored as floating only fits when it is whole.
        if (!std::isfinite(it->m_d) || it->m_d != std::trunc(it->m_d) || std::fabs(it->m_d) > 9.0e18) return;
        n = static_cast<long long>(it->m_d);
    } else {
        return;
    }
    if (n < kTypes[type].lo || n > kTypes[type].hi) return;
    v = static_cast<T>(n);
}

template <class T>
void CZSetObj::RealItem(const CString& key, Type type, T& v)
{
    if (m_bStoring) {
        Put(key, type).m_d = static_cast<double>(v);
        return;
    }
    const CItem* it = Get(key, type);
    if (!it) return;
    if (IsReal(it->m_type)) v = static_cast<T>(it->m_d);
    else if (IsInt(it->m_type)) v = static_cast<T>(it->m_n);
}

void CZSetObj::Item(const CString& key, unsigned char& v) { IntItem(key, U8, v); }
void CZSetObj::Item(const CString& key, short& v) { IntItem(key, I16, v); }
void CZSetObj::Item(const CString& key, unsigned short& v) { IntItem(key, U16, v); }
void CZSetObj::Item(const CString& key, int& v) { IntItem(key, I32, v); }
void CZSetObj::Item(const CString& key, unsigned long& v)
{
    // unsigned long is 32 bits in the records; keep the stored value so.
    if (m_bStoring) {
        Put(key, U32).m_n = static_cast<long long>(static_cast<std::uint32_t>(v));
        return;
    }
    IntItem(key, U32, v);
}
void CZSetObj::Item(const CString& key, float& v) { RealItem(key, F32, v); }
void CZSetObj::Item(const CString& key, double& v) { RealItem(key, F64, v); }

void CZSetObj::Item(const CString& key, CString& v)
{
    if (m_bStoring) {
        Put(key, Str).m_str = v;
        return;
    }
    const CItem* it = Get(key, Str);
    if (it && IsText(it->m_type)) v = it->m_str;
}

void CZSetObj::Item(const CString& key, void*& p, void* (*lookup)(const CString&), CString (*name)(const void*))
{
    if (m_bStoring) {
        CString text;
        if (name) text = name(p);
        else if (p) text = CString::Fmt(u"0x%llx", static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(p)));
        Put(key, Ptr).m_str = text;
        return;
    }
    const CItem* it = Get(key, Ptr);
    if (!it || !lookup || !IsText(it->m_type)) return;
    p = lookup(it->m_str);
}

// ---------------------------------------------------------------- CZSetCol

CZSetObj* CZSetCol::AddObj(const CString& name, const CString& text)
{
    auto* pObj = new CZSetObj(name, text);
    AddTail(pObj);
    return pObj;
}

CZSetObj* CZSetCol::GetObj(const CString& name) const
{
    for (CZanPtr* pos = GetHeadPos(); pos;) {
        CZSetObj* pObj = GetNext(pos);
        if (pObj->m_strName == name) return pObj;
    }
    return nullptr;
}

// ---------------------------------------------------------------- CZSet

CZSetCol* CZSet::GetCol(const CString& name) const
{
    for (CZanPtr* pos = m_cols.GetHeadPos(); pos;) {
        CZSetCol* pCol = m_cols.GetNext(pos);
        if (pCol->m_strName == name) return pCol;
    }
    return nullptr;
}

CZSetCol* CZSet::AddCol(const CString& name)
{
    if (CZSetCol* pCol = GetCol(name)) {
        pCol->RemoveAll();
        return pCol;
    }
    auto* pCol = new CZSetCol(name);
    m_cols.AddTail(pCol);
    return pCol;
}

BOOL CZSet::Fail(const CString& why)
{
    m_strError = why;
    Zan::Console(0, u"Settings: %s", why);
    return FALSE;
}

CString CZSet::ToText() const { return CString::FromUtf8(StoreToJson(*this).dump(2)); }

BOOL CZSet::FromText(const CString& text)
{
    CZSet fresh;
    try {
        StoreFromJson(Json::parse(text.Utf8()), fresh);
    } catch (const Json::parse_error& e) {
        return Fail(CString::FromUtf8(std::string("damaged text: ") + e.what()));
    } catch (const BadFile& e) {
        return Fail(CString::FromUtf8(std::string("damaged text: ") + e.what()));
    }
    m_cols = fresh.m_cols;
    m_strError.Empty();
    return TRUE;
}

BOOL CZSet::Save(const CString& path)
{
    const std::string file = path.Utf8();
    const std::string tmp = file + ".tmp";
    {
        std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
        if (!out) return Fail(CString::FromUtf8("cannot write " + file));
        out << StoreToJson(*this).dump(2) << '\n';
        out.close();
        if (!out) {
            std::remove(tmp.c_str());
            return Fail(CString::FromUtf8("cannot write " + file));
        }
    }
    if (std::rename(tmp.c_str(), file.c_str()) != 0) {
        std::remove(tmp.c_str());
        return Fail(CString::FromUtf8("cannot write " + file));
    }
    m_strError.Empty();
    return TRUE;
}

BOOL CZSet::Load(const CString& path)
{
    const std::string file = path.Utf8();
    std::ifstream in(file, std::ios::binary);
    if (!in) return Fail(CString::FromUtf8("cannot open " + file));
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) return Fail(CString::FromUtf8("cannot read " + file));

    CZSet fresh;
    try {
        StoreFromJson(Json::parse(text.str()), fresh);
    } catch (const Json::exception& e) {
        // A syntax error, or a number too large for its type: the parser's
        // message names the place.
        return Fail(CString::FromUtf8(file + " is damaged: " + e.what()));
    } catch (const BadFile& e) {
        return Fail(CString::FromUtf8(file + " is damaged: " + e.what()));
    }
    m_cols = fresh.m_cols;
    m_strError.Empty();
    return TRUE;
}
