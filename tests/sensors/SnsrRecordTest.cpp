// The sensor record family: type table, factory, defaults, field order and
// copies.
#include "SnsrTestUtil.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <type_traits>
#include <typeinfo>

namespace {

template <class T>
const char* Addr(const T& field)
{
    return reinterpret_cast<const char*>(&field);
}

// Strictly increasing addresses: the fields lie in this order in memory.
template <class... F>
bool InOrder(const F&... fields)
{
    const char* a[] = {Addr(fields)...};
    for (size_t i = 1; i < sizeof...(F); ++i)
        if (!(a[i - 1] < a[i])) return false;
    return true;
}

} // namespace

TEST(SnsrRecord, TypeNames)
{
    const char16_t* const names[20] = {u"Raw",      u"Geo Position", u"Heading",  u"Motion",
                                       u"Depth",    u"Articulation", u"SOS",      u"ZDA Time",
                                       u"Altitude", u"Client",       u"Course/Speed", u"Settings",
                                       u"",         u"",             u"Marker",   u"PPS",
                                       u"Annotate", u"Temperature",  u"Pressure", u"Client Binary"};
    for (int i = 0; i < 20; ++i) EXPECT_EQ(CSnsrInf::s_types[i], CString(names[i])) << i;
    EXPECT_EQ(std::extent_v<decltype(CSnsrInf::s_types)>, 20u);
}

TEST(SnsrRecord, FactoryMakesTheClassOfEachId)
{
    const std::type_info* const classes[20] = {
        &typeid(CSnsrInf),  &typeid(CSnsrPos),    &typeid(CSnsrGyro), &typeid(CSnsrMru),     &typeid(CSnsrZ),
        &typeid(CSnsrArt),  &typeid(CSnsrSOS),    &typeid(CSnsrTime), &typeid(CSnsrAlt),     &typeid(CSnsrClt),
        &typeid(CSnsrVTG),  &typeid(CSnsrSet),    nullptr,            nullptr,               &typeid(CSnsrMarker),
        &typeid(CSnsrInf),  &typeid(CSnsrInf),    &typeid(CSnsrTmp),  &typeid(CSnsrPressure), &typeid(CSensorClientBinaryData)};
    for (int id = 0; id < 20; ++id) {
        std::unique_ptr<CSnsrInf> r(CSnsrInf::Create(id));
        if (!classes[id]) {
            EXPECT_EQ(r, nullptr) << id;
            continue;
        }
        ASSERT_NE(r, nullptr) << id;
        EXPECT_EQ(typeid(*r), *classes[id]) << id;
        // Plain records of 15 and 16 read 0 until loaded or set.
        EXPECT_EQ(r->m_type, id == 15 || id == 16 ? 0 : id) << id;
        EXPECT_EQ(r->m_time, 0.0);
        EXPECT_EQ(r->m_bank, 0);
        EXPECT_EQ(r->m_aux, 0);
        EXPECT_TRUE(r->m_raw.IsEmpty());
    }
    for (int bad : {20, 21, 255, 256, -1, -19, INT_MIN, INT_MAX}) EXPECT_EQ(CSnsrInf::Create(bad), nullptr) << bad;
}

TEST(SnsrRecord, CopyByIdAndItsRefusals)
{
    for (int id = 0; id < 19; ++id) {
        std::unique_ptr<CSnsrInf> src(CSnsrInf::Create(id));
        if (!src) continue;
        src->m_type = static_cast<BYTE>(id);
        src->m_bank = 5;
        src->m_aux = 0xABCD;
        src->m_time = 12.5;
        src->m_raw = u"raw text";
        std::unique_ptr<CSnsrInf> copy(CSnsrInf::CreateCopy(src.get()));
        ASSERT_NE(copy, nullptr) << id;
        EXPECT_NE(copy.get(), src.get());
        EXPECT_EQ(typeid(*copy), typeid(*src)) << id;
        EXPECT_EQ(copy->m_type, id);  // 15 and 16 keep src's id
        EXPECT_EQ(copy->m_bank, 5);
        EXPECT_EQ(copy->m_aux, 0xABCD);
        EXPECT_EQ(copy->m_time, 12.5);
        EXPECT_EQ(copy->m_raw, CString(u"raw text"));
        EXPECT_EQ(snsrtest::Store(*copy), snsrtest::Store(*src)) << id;
    }
    // 19 cannot be copied; 12, 13 and anything above 19 are refused.
    std::unique_ptr<CSnsrInf> bin(CSnsrInf::Create(19));
    EXPECT_EQ(CSnsrInf::CreateCopy(bin.get()), nullptr);
    CSnsrInf plain;
    for (int id : {12, 13, 19, 20, 255}) {
        plain.m_type = static_cast<BYTE>(id);
        EXPECT_EQ(CSnsrInf::CreateCopy(&plain), nullptr) << id;
    }
    // A plain record of id 16 copies as a plain record.
    plain.m_type = 16;
    std::unique_ptr<CSnsrInf> c16(CSnsrInf::CreateCopy(&plain));
    ASSERT_NE(c16, nullptr);
    EXPECT_EQ(typeid(*c16), typeid(CSnsrInf));
    EXPECT_EQ(c16->m_type, 16);
    // A record whose id names another class is refused rather than sliced.
    plain.m_type = 1;
    EXPECT_EQ(CSnsrInf::CreateCopy(&plain), nullptr);
}

TEST(SnsrRecord, CopiedValuesAreTheSource)
{
    CSnsrPos p;
    p.m_geo = CV3(1, 2, 3);
    p.m_local = CV3(4, 5, 6);
    p.m_posC = 7.0f;
    p.m_posWord = 8;
    std::unique_ptr<CSnsrInf> c(CSnsrInf::CreateCopy(&p));
    auto* cp = dynamic_cast<CSnsrPos*>(c.get());
    ASSERT_NE(cp, nullptr);
    EXPECT_EQ(cp->m_geo, p.m_geo);
    EXPECT_EQ(cp->m_local, p.m_local);
    EXPECT_EQ(cp->m_posC, 7.0f);
    EXPECT_EQ(cp->m_posWord, 8);

    CSnsrTime t;
    t.m_zda.m_t = 1e9;
    t.m_zoneMin = 45;
    std::unique_ptr<CSnsrInf> ct(CSnsrInf::CreateCopy(&t));
    EXPECT_EQ(static_cast<CSnsrTime*>(ct.get())->m_zda.m_t, 1e9);
    EXPECT_EQ(static_cast<CSnsrTime*>(ct.get())->m_zoneMin, 45);
}

TEST(SnsrRecord, ClientCopiesOwnTheirArray)
{
    CSnsrClt src;
    src.m_items.Append(new CStrDbl{u"depth", 12.5});
    src.m_items.Append(new CStrDbl{u"temp", 4.0});

    CSnsrClt byCtor(src);
    byCtor.m_items.m_ppItems[0]->m_str = u"changed";
    EXPECT_EQ(src.m_items.m_ppItems[0]->m_str, CString(u"depth"));
    EXPECT_NE(byCtor.m_items.m_ppItems[0], src.m_items.m_ppItems[0]);

    CSnsrClt byAssign;
    byAssign.m_items.Append(new CStrDbl{u"x", 0.0});
    byAssign.m_items.Append(new CStrDbl{u"y", 0.0});
    byAssign.m_items.Append(new CStrDbl{u"z", 0.0});
    byAssign = src;
    ASSERT_EQ(byAssign.m_items.m_nSize, 2u);
    byAssign.m_items.m_ppItems[1]->m_d = -1.0;
    EXPECT_EQ(src.m_items.m_ppItems[1]->m_d, 4.0);

    std::unique_ptr<CSnsrInf> byFactory(CSnsrInf::CreateCopy(&src));
    auto* f = static_cast<CSnsrClt*>(byFactory.get());
    ASSERT_EQ(f->m_items.m_nSize, 2u);
    f->m_items.m_ppItems[0]->m_str = u"other";
    EXPECT_EQ(src.m_items.m_ppItems[0]->m_str, CString(u"depth"));
    EXPECT_EQ(f->m_items.m_ppItems[1]->m_str, CString(u"temp"));
}

TEST(SnsrRecord, DefaultsAndFieldOrder)
{
    CSnsrSOS sos;
    EXPECT_EQ(sos.m_sos, 1500.0f);
    CSnsrZ z;
    EXPECT_EQ(z.m_depthFactor, 1.0f);
    EXPECT_EQ(z.m_depth, 0.0f);
    EXPECT_EQ(z.m_rawUnits, 0);
    CSnsrPos p;
    EXPECT_EQ(p.m_geo, CV3(0, 0, 0));
    EXPECT_EQ(p.m_local, CV3(0, 0, 0));
    CSnsrTime t;
    EXPECT_EQ(t.m_zda.m_t, 0.0);
    CSnsrClt c;
    EXPECT_EQ(c.m_items.m_nSize, 0u);
    EXPECT_EQ(c.m_items.m_ppItems, nullptr);
    std::unique_ptr<CSensorClientBinaryData> b(static_cast<CSensorClientBinaryData*>(CSnsrInf::Create(19)));
    EXPECT_EQ(b->m_size, 0u);
    EXPECT_EQ(b->m_data, nullptr);

    CSnsrInf i;
    EXPECT_TRUE(InOrder(i.m_time, i.m_type, i.m_bank, i.m_aux, i.m_raw));
    EXPECT_TRUE(InOrder(p.m_raw, p.m_geo, p.m_local, p.m_posA, p.m_posB, p.m_posC, p.m_posWord));
    CSnsrMru m;
    EXPECT_TRUE(InOrder(m.m_raw, m.m_pitch, m.m_roll, m.m_heave, m.m_mruA, m.m_mruB));
    EXPECT_TRUE(InOrder(z.m_raw, z.m_depth, z.m_depthFactor, z.m_rawUnits));
    CSnsrArt a;
    EXPECT_TRUE(InOrder(a.m_raw, a.m_axis, a.m_angle, a.m_angleLo, a.m_angleHi));
    CSnsrVTG v;
    EXPECT_TRUE(InOrder(v.m_raw, v.m_courseT, v.m_courseM, v.m_speedKts, v.m_speedKmh));
    CSnsrPressure pr;
    EXPECT_TRUE(InOrder(pr.m_raw, pr.m_pressure, pr.m_pressUnit, pr.m_tempVal, pr.m_tempUnit));
    EXPECT_TRUE(InOrder(t.m_raw, t.m_zda, t.m_zoneHr, t.m_zoneMin));
    EXPECT_TRUE(InOrder(b->m_raw, b->m_size, b->m_data));
}

TEST(SnsrRecord, ClassShapes)
{
    static_assert(std::is_polymorphic_v<CSnsrInf> && std::has_virtual_destructor_v<CSnsrInf>);
    static_assert(std::is_base_of_v<CSnsrInf, CSnsrPressure> && std::is_base_of_v<CSnsrInf, CSnsrSet>);
    // The client block is made by the factory alone and never copied.
    static_assert(!std::is_copy_constructible_v<CSensorClientBinaryData>);
    static_assert(!std::is_copy_assignable_v<CSensorClientBinaryData>);
    static_assert(!std::is_default_constructible_v<CSensorClientBinaryData>);
    static_assert(std::is_copy_constructible_v<CSnsrClt> && std::is_copy_assignable_v<CSnsrClt>);
    // CSnsrList: no data, no base, a virtual destructor, copies that do nothing.
    static_assert(std::is_polymorphic_v<CSnsrList> && sizeof(CSnsrList) == sizeof(void*));
    CSnsrList l1, l2(l1);
    l2 = l1;
    SUCCEED();
}
