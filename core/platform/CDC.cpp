#include "core/platform/CDC.h"

#include "render/CPngWriter.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>
#include <utility>

namespace {

// What a fresh context has selected.
CBrush s_defBrush(RGB(255, 255, 255));
CFont s_defFont;
CPen s_defPen(PS_SOLID, 1, RGB(0, 0, 0));

void SetSource(cairo_t* cr, COLORREF c)
{
    cairo_set_source_rgb(cr, GetRValue(c) / 255.0, GetGValue(c) / 255.0, GetBValue(c) / 255.0);
}

// GDI's prefix rule: "&x" shows x, "&&" shows "&", a trailing '&' vanishes.
CString StripPrefix(const CString& text)
{
    std::u16string out;
    const std::u16string& s = text.Str();
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == u'&') {
            if (++i >= s.size()) break;
        }
        out += s[i];
    }
    return CString(std::move(out));
}

// A single line: line breaks show as spaces, as one line of a static control.
CString OneLine(const CString& text)
{
    std::u16string s = text.Str();
    std::replace(s.begin(), s.end(), u'\r', u' ');
    std::replace(s.begin(), s.end(), u'\n', u' ');
    return CString(std::move(s));
}

} // namespace

struct CDC::Impl {
    cairo_surface_t* surf = nullptr;
    cairo_t* cr = nullptr;
    CBrush* brush = &s_defBrush;
    CFont* font = &s_defFont;
    CPen* pen = &s_defPen;
    int bkMode = OPAQUE;
    COLORREF bkColor = RGB(255, 255, 255);
    COLORREF textColor = RGB(0, 0, 0);
    CPoint org;
    CPoint cur;

    Impl() = default;
    ~Impl()
    {
        Drop();
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void Drop()
    {
        if (cr) cairo_destroy(cr);
        if (surf) cairo_surface_destroy(surf);
        cr = nullptr;
        surf = nullptr;
    }
    void ResetState()
    {
        brush = &s_defBrush;
        font = &s_defFont;
        pen = &s_defPen;
        bkMode = OPAQUE;
        bkColor = RGB(255, 255, 255);
        textColor = RGB(0, 0, 0);
        org = CPoint();
        cur = CPoint();
    }
    void Attach(cairo_surface_t* s)
    {
        Drop();
        surf = s;
        cr = cairo_create(surf);
        cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE);
        ResetState();
    }
    void Org()
    {
        cairo_identity_matrix(cr);
        cairo_translate(cr, org.x, org.y);
    }
    void Fill(const CRect& r, COLORREF c)
    {
        if (!cr || r.IsRectEmpty()) return;
        cairo_rectangle(cr, r.left, r.top, r.Width(), r.Height());
        SetSource(cr, c);
        cairo_fill(cr);
    }

    // Text needs a Pango context: one per thread, as Pango's font map is,
    // made on first use, so contexts that never draw text (and the library's
    // load) don't start the font system.
    static PangoContext* Pango()
    {
        struct Ctx {
            PangoContext* p = nullptr;
            ~Ctx()
            {
                if (p) g_object_unref(p);
            }
        };
        thread_local Ctx ctx;
        if (!ctx.p) {
            ctx.p = pango_font_map_create_context(pango_cairo_font_map_get_default());
            // Grey-level text without hinting: the same pixels whatever the
            // desktop's font settings.
            cairo_font_options_t* fo = cairo_font_options_create();
            cairo_font_options_set_antialias(fo, CAIRO_ANTIALIAS_GRAY);
            cairo_font_options_set_hint_style(fo, CAIRO_HINT_STYLE_NONE);
            cairo_font_options_set_hint_metrics(fo, CAIRO_HINT_METRICS_OFF);
            pango_cairo_context_set_font_options(ctx.p, fo);
            cairo_font_options_destroy(fo);
        }
        return ctx.p;
    }

    // A layout of `text` in the selected font.
    PangoLayout* Layout(const CString& text)
    {
        PangoContext* ctx = Pango();
        // The context follows this surface's transformation (or none).
        if (cr) pango_cairo_update_context(cr, ctx);
        else if (pango_context_get_matrix(ctx)) pango_context_set_matrix(ctx, nullptr);
        PangoLayout* l = pango_layout_new(ctx);
        PangoFontDescription* d = pango_font_description_new();
        pango_font_description_set_family(d, font->m_strFace.Utf8().c_str());
        pango_font_description_set_absolute_size(d, std::abs(font->m_nHeight ? font->m_nHeight : 12) * PANGO_SCALE);
        pango_font_description_set_weight(d, static_cast<PangoWeight>(std::clamp(font->m_nWeight ? font->m_nWeight : 400, 100, 1000)));
        pango_font_description_set_style(d, font->m_bItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
        pango_layout_set_font_description(l, d);
        pango_font_description_free(d);
        const std::string utf8 = text.Utf8();
        pango_layout_set_text(l, utf8.c_str(), static_cast<int>(utf8.size()));
        return l;
    }
    // Draws the layout with the top-left of its logical box at (x, y).
    void Show(PangoLayout* l, int x, int y, const PangoRectangle& logical)
    {
        if (bkMode == OPAQUE) Fill(CRect(x, y, x + logical.width, y + logical.height), bkColor);
        SetSource(cr, textColor);
        cairo_move_to(cr, x - logical.x, y - logical.y);
        pango_cairo_show_layout(cr, l);
    }
};

CDC::CDC() : m_p(std::make_unique<Impl>()) {}

CDC::CDC(int width, int height) : CDC()
{
    CreateSurface(width, height);
}

CDC::~CDC() = default;

BOOL CDC::CreateSurface(int width, int height)
{
    m_p->Drop();
    m_p->ResetState();
    if (width < 1 || height < 1) return FALSE;
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(s);
        return FALSE;
    }
    m_p->Attach(s);
    cairo_set_source_rgb(m_p->cr, 0, 0, 0);
    cairo_paint(m_p->cr);
    return TRUE;
}

BOOL CDC::CreateOn(const CDC& other)
{
    if (!other.m_p->surf) return FALSE;
    m_p->Attach(cairo_surface_reference(other.m_p->surf));
    return TRUE;
}

int CDC::Width() const
{
    return m_p->surf ? cairo_image_surface_get_width(m_p->surf) : 0;
}

int CDC::Height() const
{
    return m_p->surf ? cairo_image_surface_get_height(m_p->surf) : 0;
}

BOOL CDC::HasSurface() const
{
    return m_p->surf != nullptr;
}

CBrush* CDC::SelectObject(CBrush* brush)
{
    return std::exchange(m_p->brush, brush ? brush : &s_defBrush);
}

CFont* CDC::SelectObject(CFont* font)
{
    return std::exchange(m_p->font, font ? font : &s_defFont);
}

CPen* CDC::SelectObject(CPen* pen)
{
    return std::exchange(m_p->pen, pen ? pen : &s_defPen);
}

int CDC::SetBkMode(int mode)
{
    return std::exchange(m_p->bkMode, mode == TRANSPARENT ? TRANSPARENT : OPAQUE);
}

int CDC::GetBkMode() const
{
    return m_p->bkMode;
}

COLORREF CDC::SetBkColor(COLORREF color)
{
    return std::exchange(m_p->bkColor, color & 0xFFFFFF);
}

COLORREF CDC::GetBkColor() const
{
    return m_p->bkColor;
}

COLORREF CDC::SetTextColor(COLORREF color)
{
    return std::exchange(m_p->textColor, color & 0xFFFFFF);
}

COLORREF CDC::GetTextColor() const
{
    return m_p->textColor;
}

CPoint CDC::SetViewportOrg(int x, int y)
{
    const CPoint old = std::exchange(m_p->org, CPoint(x, y));
    if (m_p->cr) m_p->Org();
    return old;
}

CPoint CDC::GetViewportOrg() const
{
    return m_p->org;
}

void CDC::IntersectClipRect(const CRect& rect)
{
    if (!m_p->cr) return;
    cairo_rectangle(m_p->cr, rect.left, rect.top, std::max(0, rect.Width()), std::max(0, rect.Height()));
    cairo_clip(m_p->cr);
}

void CDC::SelectClipRgnAll()
{
    if (m_p->cr) cairo_reset_clip(m_p->cr);
}

void CDC::FillRect(const CRect& rect, const CBrush* brush)
{
    if (brush && !brush->m_bNull) m_p->Fill(rect, brush->m_color);
}

void CDC::FillSolidRect(const CRect& rect, COLORREF color)
{
    m_p->Fill(rect, color & 0xFFFFFF);
}

void CDC::FrameRect(const CRect& rect, const CBrush* brush)
{
    if (!brush || brush->m_bNull || rect.IsRectEmpty()) return;
    const COLORREF c = brush->m_color;
    m_p->Fill(CRect(rect.left, rect.top, rect.right, rect.top + 1), c);
    m_p->Fill(CRect(rect.left, rect.bottom - 1, rect.right, rect.bottom), c);
    m_p->Fill(CRect(rect.left, rect.top, rect.left + 1, rect.bottom), c);
    m_p->Fill(CRect(rect.right - 1, rect.top, rect.right, rect.bottom), c);
}

BOOL CDC::Rectangle(int left, int top, int right, int bottom)
{
    if (!m_p->cr) return FALSE;
    const CRect r(left, top, right, bottom);
    FillRect(r, m_p->brush);
    if (m_p->pen->m_nStyle != PS_NULL) {
        const CBrush edge(m_p->pen->m_color);
        FrameRect(r, &edge);
    }
    return TRUE;
}

CPoint CDC::MoveTo(int x, int y)
{
    return std::exchange(m_p->cur, CPoint(x, y));
}

BOOL CDC::LineTo(int x, int y)
{
    const CPoint a = std::exchange(m_p->cur, CPoint(x, y));
    if (!m_p->cr) return FALSE;
    const CPen& pen = *m_p->pen;
    if (pen.m_nStyle == PS_NULL) return TRUE;
    const int w = std::max(1, pen.m_nWidth);
    const int lo = w / 2;  // a wide pen is centred on the line
    cairo_t* cr = m_p->cr;
    // Bresenham, stopping one pixel short of the end; straight runs become one
    // rectangle each.
    const int dx = std::abs(x - a.x), dy = -std::abs(y - a.y);
    const int sx = a.x < x ? 1 : -1, sy = a.y < y ? 1 : -1;
    if (dy == 0 || dx == 0) {
        if (dx == 0 && dy == 0) return TRUE;
        int x0 = a.x, x1 = x, y0 = a.y, y1 = y;
        if (dy == 0) {
            if (x1 < x0) { x1 = x0 + 1; x0 = x + 1; }
            cairo_rectangle(cr, x0, y0 - lo, x1 - x0, w);
        } else {
            if (y1 < y0) { y1 = y0 + 1; y0 = y + 1; }
            cairo_rectangle(cr, x0 - lo, y0, w, y1 - y0);
        }
    } else {
        int px = a.x, py = a.y, err = dx + dy;
        while (px != x || py != y) {
            cairo_rectangle(cr, px - lo, py - lo, w, w);
            const int e2 = 2 * err;
            if (e2 >= dy) { err += dy; px += sx; }
            if (e2 <= dx) { err += dx; py += sy; }
        }
    }
    SetSource(cr, pen.m_color);
    cairo_fill(cr);
    return TRUE;
}

COLORREF CDC::GetPixel(int x, int y) const
{
    if (!m_p->surf) return 0xFFFFFFFF;
    x += m_p->org.x;
    y += m_p->org.y;
    if (x < 0 || y < 0 || x >= Width() || y >= Height()) return 0xFFFFFFFF;
    cairo_surface_flush(m_p->surf);
    const unsigned char* row = cairo_image_surface_get_data(m_p->surf) + y * cairo_image_surface_get_stride(m_p->surf);
    std::uint32_t px;
    std::memcpy(&px, row + 4 * x, 4);
    return RGB(static_cast<BYTE>(px >> 16), static_cast<BYTE>(px >> 8), static_cast<BYTE>(px));
}

COLORREF CDC::SetPixel(int x, int y, COLORREF color)
{
    m_p->Fill(CRect(x, y, x + 1, y + 1), color & 0xFFFFFF);
    return color & 0xFFFFFF;
}

BOOL CDC::TextOut(int x, int y, const CString& text)
{
    if (!m_p->cr) return FALSE;
    PangoLayout* l = m_p->Layout(text);
    PangoRectangle logical;
    pango_layout_get_pixel_extents(l, nullptr, &logical);
    m_p->Show(l, x, y, logical);
    g_object_unref(l);
    return TRUE;
}

int CDC::DrawText(const CString& text, CRect& rect, UINT format)
{
    CString shown = (format & DT_NOPREFIX) ? text : StripPrefix(text);
    const bool single = (format & DT_SINGLELINE) != 0;
    if (single) shown = OneLine(shown);
    PangoLayout* l = m_p->Layout(shown);
    const int width = std::max(1, rect.Width());
    if (single) {
        pango_layout_set_single_paragraph_mode(l, TRUE);
    } else {
        pango_layout_set_alignment(l, (format & DT_CENTER) ? PANGO_ALIGN_CENTER
                                      : (format & DT_RIGHT) ? PANGO_ALIGN_RIGHT
                                                            : PANGO_ALIGN_LEFT);
        if (format & DT_WORDBREAK) {
            pango_layout_set_width(l, width * PANGO_SCALE);
            pango_layout_set_wrap(l, PANGO_WRAP_WORD_CHAR);
        }
    }
    if ((format & DT_END_ELLIPSIS) && !(format & DT_CALCRECT)) {
        pango_layout_set_width(l, width * PANGO_SCALE);
        pango_layout_set_ellipsize(l, PANGO_ELLIPSIZE_END);
    }
    PangoRectangle logical;
    pango_layout_get_pixel_extents(l, nullptr, &logical);
    const int height = logical.height;
    if (format & DT_CALCRECT) {
        rect.right = rect.left + logical.width;
        rect.bottom = rect.top + logical.height;
        g_object_unref(l);
        return height;
    }
    if (!m_p->cr) {
        g_object_unref(l);
        return height;
    }
    int x = rect.left;
    if (format & DT_CENTER) x = rect.left + (rect.Width() - logical.width) / 2;
    else if (format & DT_RIGHT) x = rect.right - logical.width;
    int y = rect.top;
    if (single && (format & DT_VCENTER)) y = rect.top + (rect.Height() - logical.height) / 2;
    else if (single && (format & DT_BOTTOM)) y = rect.bottom - logical.height;
    cairo_save(m_p->cr);
    if (!(format & DT_NOCLIP)) {
        cairo_rectangle(m_p->cr, rect.left, rect.top, std::max(0, rect.Width()), std::max(0, rect.Height()));
        cairo_clip(m_p->cr);
    }
    m_p->Show(l, x, y, logical);
    cairo_restore(m_p->cr);
    g_object_unref(l);
    return height;
}

CSize CDC::GetTextExtent(const CString& text) const
{
    PangoLayout* l = m_p->Layout(text);
    PangoRectangle logical;
    pango_layout_get_pixel_extents(l, nullptr, &logical);
    g_object_unref(l);
    return CSize(logical.width, logical.height);
}

BOOL CDC::BitBlt(int x, int y, int w, int h, const CDC* src, int sx, int sy, DWORD rop)
{
    return StretchBlt(x, y, w, h, src, sx, sy, w, h, rop);
}

BOOL CDC::StretchBlt(int x, int y, int w, int h, const CDC* src, int sx, int sy, int sw, int sh, DWORD rop)
{
    if (!m_p->cr || !src || !src->m_p->surf || rop != SRCCOPY) return FALSE;
    if (w < 1 || h < 1 || sw < 1 || sh < 1) return FALSE;
    cairo_surface_t* from = src->m_p->surf;
    // Reading and writing one surface in one operation is undefined in
    // Cairo: copy the source pixels out first.
    cairo_surface_t* own = nullptr;
    if (from == m_p->surf) {
        own = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, Width(), Height());
        cairo_t* c = cairo_create(own);
        cairo_set_source_surface(c, from, 0, 0);
        cairo_set_operator(c, CAIRO_OPERATOR_SOURCE);
        cairo_paint(c);
        cairo_destroy(c);
        from = own;
    }
    cairo_surface_t* part = cairo_surface_create_for_rectangle(from, sx + src->m_p->org.x, sy + src->m_p->org.y, sw, sh);
    cairo_t* cr = m_p->cr;
    cairo_save(cr);
    cairo_rectangle(cr, x, y, w, h);
    cairo_clip(cr);
    cairo_translate(cr, x, y);
    cairo_scale(cr, static_cast<double>(w) / sw, static_cast<double>(h) / sh);
    cairo_set_source_surface(cr, part, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_NEAREST);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_restore(cr);
    cairo_surface_destroy(part);
    if (own) cairo_surface_destroy(own);
    return TRUE;
}

void CDC::GetRGBA(CRgb* dst) const
{
    if (!m_p->surf || !dst) return;
    cairo_surface_flush(m_p->surf);
    const int w = Width(), h = Height(), stride = cairo_image_surface_get_stride(m_p->surf);
    const unsigned char* data = cairo_image_surface_get_data(m_p->surf);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            std::uint32_t px;
            std::memcpy(&px, data + y * stride + 4 * x, 4);
            const unsigned a = px >> 24;
            auto un = [a](unsigned c) -> BYTE { return a ? static_cast<BYTE>((c * 255 + a / 2) / a) : 0; };
            *dst++ = CRgb(un((px >> 16) & 0xFF), un((px >> 8) & 0xFF), un(px & 0xFF), static_cast<BYTE>(a));
        }
    }
}

BOOL CDC::SavePng(const CString& path) const
{
    if (!m_p->surf) return FALSE;
    // Through the library's one PNG writer, so panels and display images
    // come out alike.
    std::vector<CRgb> rgba(static_cast<std::size_t>(Width()) * Height());
    GetRGBA(rgba.data());
    return CPngWriter::Write(path, rgba.data(), Width(), Height()) ? TRUE : FALSE;
}
