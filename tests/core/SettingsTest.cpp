#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A file name in the test's own temporary folder, removed at the end.
class TempFile {
public:
    explicit TempFile(const char* name)
        : m_path(fs::temp_directory_path() / ("zan_settings_" + std::to_string(::getpid()) + "_" + name))
    {
        fs::remove(m_path);
    }
    ~TempFile() { fs::remove(m_path); }
    CString Path() const { return CString::FromUtf8(m_path.string()); }
    std::string Read() const
    {
        std::ifstream in(m_path);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }
    void Write(const std::string& text) const { std::ofstream(m_path) << text; }

private:
    fs::path m_path;
};

// Collects Console lines while alive.
class ConsoleCatcher {
public:
    ConsoleCatcher()
    {
        m_old = Zan::SetSink([this](Zan::Kind kind, unsigned long, int, const CString& text) {
            if (kind == Zan::Kind::Console) m_lines.push_back(text.Utf8());
        });
    }
    ~ConsoleCatcher() { Zan::SetSink(m_old); }
    std::vector<std::string> m_lines;

private:
    Zan::Sink m_old;
};

// Every field kind a settings class can bind, with distinct defaults.
struct AllKinds {
    unsigned char u8 = 1;
    short i16 = -2;
    unsigned short u16 = 3;
    int i32 = -4;
    unsigned long u32 = 5;
    float f32 = 6.5f;
    double f64 = -7.25;
    CString str = u"eight";
    void* ptr = nullptr;

    void Settings(CZSetObj& set)
    {
        set.Item(u"U8", u8);
        set.Item(u"I16", i16);
        set.Item(u"U16", u16);
        set.Item(u"I32", i32);
        set.Item(u"U32", u32);
        set.Item(u"F32", f32);
        set.Item(u"F64", f64);
        set.Item(u"Str", str);
        set.Item(u"Ptr", ptr, &Lookup, &Name);
    }
    static int s_targets[3];
    static void* Lookup(const CString& name)
    {
        for (int i = 0; i < 3; ++i)
            if (name == CString::Fmt(u"target%d", i)) return &s_targets[i];
        return nullptr;
    }
    static CString Name(const void* p)
    {
        for (int i = 0; i < 3; ++i)
            if (p == &s_targets[i]) return CString::Fmt(u"target%d", i);
        return CString();
    }
};
int AllKinds::s_targets[3];

std::vector<std::string> Lines(const CZSetObj& obj)
{
    std::vector<std::string> out;
    for (CZanPtr* pos = obj.m_data.GetHeadPos(); pos;) out.push_back(obj.m_data.GetNext(pos)->Utf8());
    return out;
}

}  // namespace

TEST(Settings, EveryItemKindRoundTripsThroughAFile)
{
    TempFile file("kinds.json");
    AllKinds a;
    a.u8 = 255;
    a.i16 = -32768;
    a.u16 = 65535;
    a.i32 = -2147483647 - 1;
    a.u32 = 4294967295UL;
    a.f32 = 0.1f;
    a.f64 = 1.0 / 3.0;
    a.str = CString::FromUtf8("d\xC3\xA9j\xC3\xA0 \"vu\"\n\xF0\x9F\x98\x80");
    a.ptr = &AllKinds::s_targets[2];
    {
        CZSet set;
        CZSetObj* obj = set.AddCol(u"Kinds")->AddObj(u"First", u"No Data");
        ASSERT_TRUE(obj->IsStoring());
        ASSERT_FALSE(obj->IsLoading());
        a.Settings(*obj);
        obj->Data(u"%1.6lf", 0.5);
        obj->Data(u"%s,%d", CString(u"x"), 7);
        ASSERT_TRUE(set.Save(file.Path()));
        EXPECT_TRUE(set.m_strError.IsEmpty());
    }
    CZSet set;
    ASSERT_TRUE(set.Load(file.Path()));
    CZSetCol* col = set.GetCol(u"Kinds");
    ASSERT_NE(col, nullptr);
    ASSERT_EQ(col->GetCount(), 1);
    CZSetObj* obj = col->GetHead();
    EXPECT_EQ(obj->m_strName, CString(u"First"));
    EXPECT_EQ(obj->m_strText, CString(u"No Data"));
    EXPECT_TRUE(obj->IsLoading());
    AllKinds b;
    b.Settings(*obj);
    EXPECT_EQ(b.u8, 255);
    EXPECT_EQ(b.i16, -32768);
    EXPECT_EQ(b.u16, 65535);
    EXPECT_EQ(b.i32, -2147483647 - 1);
    EXPECT_EQ(b.u32, 4294967295UL);
    EXPECT_EQ(b.f32, 0.1f);
    EXPECT_EQ(b.f64, 1.0 / 3.0);  // bit for bit
    EXPECT_EQ(b.str, a.str);
    EXPECT_EQ(b.ptr, &AllKinds::s_targets[2]);
    EXPECT_EQ(Lines(*obj), (std::vector<std::string>{"0.500000", "x,7"}));

    // The file is plain, readable JSON, with the items in their order.
    const std::string text = file.Read();
    const auto u8At = text.find("\"U8\"");
    const auto ptrAt = text.find("\"Ptr\"");
    EXPECT_NE(u8At, std::string::npos);
    EXPECT_LT(u8At, ptrAt);
    EXPECT_NE(text.find("\"type\": \"u32\""), std::string::npos);
    EXPECT_NE(text.find("\"value\": 0.1\n"), std::string::npos) << "f32 is written in its shortest form";
    EXPECT_EQ(text.find("0.1000000014"), std::string::npos);
    EXPECT_NE(text.find("\"target2\""), std::string::npos);
    EXPECT_NE(text.find("\"0.500000\""), std::string::npos);
}

TEST(Settings, LoadingLeavesAbsentKeysAtTheirDefaultsAndStoringIsIdempotent)
{
    CZSetObj obj(u"o", u"");
    int n = 5;
    double d = 2.0;
    obj.Item(u"N", n);
    obj.Item(u"N", n);  // same key, same type: overwritten in place
    n = 6;
    obj.Item(u"N", n);
    ASSERT_EQ(obj.m_items.size(), 1u);
    EXPECT_EQ(obj.m_items[0].m_n, 6);
    obj.SetLoading();
    obj.Data(u"%d", 1);  // loading: no line
    EXPECT_EQ(obj.GetDataCount(), 0);
    int n2 = 99;
    obj.Item(u"N", n2);
    obj.Item(u"D", d);
    EXPECT_EQ(n2, 6);
    EXPECT_EQ(d, 2.0);
}

TEST(Settings, OneKeyBoundToTwoTypesKeepsBothValues)
{
    // A class may bind one key twice with different overloads; both survive
    // the round trip and each load finds its own.
    CZSetObj obj;
    float f = 12.5f;
    short s = -3;
    obj.Item(u"bfRng", f);
    obj.Item(u"bfRng", s);
    ASSERT_EQ(obj.m_items.size(), 2u);
    CZSet set;
    *set.AddCol(u"Ping")->AddObj(u"p", u"") = obj;
    CZSet back;
    ASSERT_TRUE(back.FromText(set.ToText()));
    CZSetObj* o = back.GetCol(u"Ping")->GetHead();
    float f2 = 0;
    short s2 = 0;
    o->Item(u"bfRng", f2);
    o->Item(u"bfRng", s2);
    EXPECT_EQ(f2, 12.5f);
    EXPECT_EQ(s2, -3);
}

TEST(Settings, LoadingConvertsBetweenNumberKindsOnlyWhenTheValueFits)
{
    CZSet set;
    ASSERT_TRUE(set.FromText(CString(
        u"{\"format\":\"ZanData settings\",\"version\":1,\"collections\":[{\"name\":\"c\",\"objects\":["
        u"{\"name\":\"o\",\"items\":["
        u"{\"key\":\"Big\",\"type\":\"i32\",\"value\":1000},"
        u"{\"key\":\"Whole\",\"type\":\"f64\",\"value\":42.0},"
        u"{\"key\":\"Frac\",\"type\":\"f64\",\"value\":1.5},"
        u"{\"key\":\"Txt\",\"type\":\"string\",\"value\":\"abc\"}]}]}]}")));
    CZSetObj* o = set.GetCol(u"c")->GetObj(u"o");
    ASSERT_NE(o, nullptr);
    unsigned char b = 7;
    o->Item(u"Big", b);  // 1000 doesn't fit a byte: left alone
    EXPECT_EQ(b, 7);
    int n = 0;
    o->Item(u"Big", n);
    EXPECT_EQ(n, 1000);
    double d = 0;
    o->Item(u"Big", d);
    EXPECT_EQ(d, 1000.0);
    short s = 0;
    o->Item(u"Whole", s);
    EXPECT_EQ(s, 42);
    int frac = 9;
    o->Item(u"Frac", frac);
    EXPECT_EQ(frac, 9);
    double txt = 3.0;
    o->Item(u"Txt", txt);
    EXPECT_EQ(txt, 3.0);
    CString str(u"keep");
    o->Item(u"Frac", str);
    EXPECT_EQ(str, CString(u"keep"));
}

TEST(Settings, NonFiniteValuesSurvive)
{
    CZSetObj obj;
    double a = std::numeric_limits<double>::quiet_NaN(), b = -std::numeric_limits<double>::infinity();
    float c = std::numeric_limits<float>::infinity();
    obj.Item(u"A", a);
    obj.Item(u"B", b);
    obj.Item(u"C", c);
    CZSet set;
    *set.AddCol(u"c")->AddObj(u"o", u"") = obj;
    CZSet back;
    ASSERT_TRUE(back.FromText(set.ToText()));
    CZSetObj* o = back.GetCol(u"c")->GetHead();
    double a2 = 0, b2 = 0;
    float c2 = 0;
    o->Item(u"A", a2);
    o->Item(u"B", b2);
    o->Item(u"C", c2);
    EXPECT_TRUE(std::isnan(a2));
    EXPECT_EQ(b2, b);
    EXPECT_EQ(c2, c);
}

TEST(Settings, CollectionsAndObjectsKeepTheirOrder)
{
    CZSet set;
    EXPECT_EQ(set.GetCol(u"none"), nullptr);
    CZSetCol* a = set.AddCol(u"A");
    CZSetCol* b = set.AddCol(u"B");
    a->AddObj(u"a1", u"")->Data(u"line %d", 1);
    a->AddObj(u"a2", u"");
    a->AddObj(u"a1", u"second of the name");
    b->AddObj(u"b1", u"");
    EXPECT_EQ(set.GetCol(u"A"), a);
    EXPECT_EQ(set.GetCol(u"B"), b);
    EXPECT_EQ(a->GetObj(u"a1")->GetDataCount(), 1);

    CZSet back;
    ASSERT_TRUE(back.FromText(set.ToText()));
    ASSERT_EQ(back.m_cols.GetCount(), 2);
    CZSetCol* a2 = back.GetCol(u"A");
    std::vector<std::string> names;
    for (CZanPtr* pos = a2->GetHeadPos(); pos;) names.push_back(a2->GetNext(pos)->m_strName.Utf8());
    EXPECT_EQ(names, (std::vector<std::string>{"a1", "a2", "a1"}));
    EXPECT_EQ(a2->GetTail()->m_strText, CString(u"second of the name"));

    // Adding a collection of an existing name empties and reuses it.
    EXPECT_EQ(set.AddCol(u"A"), a);
    EXPECT_TRUE(a->IsEmpty());
    EXPECT_EQ(set.m_cols.GetCount(), 2);
}

TEST(Settings, MissingOrDamagedFileReportsAndLeavesTheStoreAlone)
{
    TempFile file("damaged.json");
    ConsoleCatcher console;
    CZSet set;
    set.AddCol(u"Keep")->AddObj(u"o", u"");

    EXPECT_FALSE(set.Load(file.Path()));  // missing
    EXPECT_NE(set.m_strError.Utf8().find("cannot open"), std::string::npos) << set.m_strError;
    ASSERT_EQ(console.m_lines.size(), 1u);
    EXPECT_EQ(console.m_lines[0].rfind("Settings: cannot open", 0), 0u) << console.m_lines[0];

    struct Case {
        const char* text;
        const char* expect;
    };
    const Case cases[] = {
        {"{ \"format\": \"ZanData settings\", \"version\": 1, \"collections\": [ }", "parse error"},
        {"[1, 2]", "not a JSON object"},
        {"{ \"format\": \"other\", \"version\": 1, \"collections\": [] }", "not a settings file"},
        {"{ \"format\": \"ZanData settings\", \"version\": 9, \"collections\": [] }", "version"},
        {"{ \"format\": \"ZanData settings\", \"version\": 1 }", "\"collections\" missing"},
        {"{ \"format\": \"ZanData settings\", \"version\": 1, \"collections\": [ { \"name\": \"c\", \"objects\": "
         "[ { \"name\": \"o\", \"items\": [ { \"key\": \"K\", \"type\": \"u8\", \"value\": 256 } ] } ] } ] }",
         "item 0 (\"K\"): value out of range for u8"},
        {"{ \"format\": \"ZanData settings\", \"version\": 1, \"collections\": [ { \"name\": \"c\", \"objects\": "
         "[ { \"name\": \"o\", \"items\": [ { \"key\": \"K\", \"type\": \"i64\", \"value\": 1 } ] } ] } ] }",
         "unknown type \"i64\""},
        {"{ \"format\": \"ZanData settings\", \"version\": 1, \"collections\": [ { \"name\": \"c\", \"objects\": "
         "[ { \"name\": \"o\", \"items\": [ { \"key\": \"K\", \"type\": \"i32\", \"value\": \"1\" } ] } ] } ] }",
         "not a whole number"},
        {"{ \"format\": \"ZanData settings\", \"version\": 1, \"collections\": [ { \"name\": \"c\", \"objects\": "
         "[ { \"name\": \"o\", \"data\": [ \"1.0\", 2.0 ] } ] } ] }",
         "data line 1: not text"},
    };
    for (const Case& c : cases) {
        file.Write(c.text);
        EXPECT_FALSE(set.Load(file.Path())) << c.text;
        EXPECT_NE(set.m_strError.Utf8().find(c.expect), std::string::npos) << set.m_strError << " / " << c.expect;
        // Still the store it was.
        ASSERT_EQ(set.m_cols.GetCount(), 1);
        EXPECT_NE(set.GetCol(u"Keep"), nullptr);
    }
    EXPECT_EQ(console.m_lines.size(), 1u + std::size(cases));
}

TEST(Settings, AUserEditedFileLoads)
{
    // What a user may type: no "text", no "data", an integer for a double.
    TempFile file("edited.json");
    file.Write(R"({
  "format": "ZanData settings", "version": 1,
  "collections": [ { "name": "Filter", "objects": [ { "name": "Main",
      "items": [ { "key": "FltBias", "type": "f64", "value": 1 } ] } ] } ]
})");
    CZSet set;
    ASSERT_TRUE(set.Load(file.Path())) << set.m_strError;
    double bias = 0.0;
    set.GetCol(u"Filter")->GetObj(u"Main")->Item(u"FltBias", bias);
    EXPECT_EQ(bias, 1.0);
}

TEST(Settings, SaveToAnUnwritablePlaceFails)
{
    ConsoleCatcher console;
    CZSet set;
    EXPECT_FALSE(set.Save(u"/nonexistent-folder/settings.json"));
    EXPECT_NE(set.m_strError.Utf8().find("cannot write"), std::string::npos);
    EXPECT_EQ(console.m_lines.size(), 1u);
}

TEST(Settings, PointerItemWithoutNameFunction)
{
    static int target;
    CZSetObj obj;
    void* p = nullptr;
    obj.Item(u"P", p, [](const CString&) -> void* { return &target; });
    ASSERT_EQ(obj.m_items.size(), 1u);
    EXPECT_TRUE(obj.m_items[0].m_str.IsEmpty());
    obj.SetLoading();
    obj.Item(u"P", p, [](const CString& s) -> void* { return s.IsEmpty() ? &target : nullptr; });
    EXPECT_EQ(p, &target);
    void* q = &target;
    obj.Item(u"Q", q, [](const CString&) -> void* { return nullptr; });  // absent key: left alone
    EXPECT_EQ(q, &target);
}
