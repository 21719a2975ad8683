#pragma once
// CWnd: a window of the framework, headless. A window object exists before
// and after its window: Create makes the window (a rectangle, a visible flag
// and, for a top-level window, a surface of its own to paint on), and
// DestroyWindow ends it. A child window (a control) paints into its top-level
// window's surface, through a device context moved to its own origin and
// clipped to it.
//
// Painting works as the framework's: Invalidate marks the window for
// repainting, UpdateWindow paints a visible, invalid window now (erasing its
// background first when asked, then OnPaint), and GetDC gives a context to
// paint directly, outside that cycle. The surface keeps what was painted, so
// the host can look at it (GetRGBA, SavePng) at any time.
//
// Windows belong to the host's user interface thread; nothing here locks.
#include "core/platform/CDC.h"
#include "core/platform/CObject.h"
#include "core/platform/CRect.h"
#include "core/platform/CString.h"

#include <memory>

// ShowWindow commands.
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;

class CWnd : public CObject {
public:
    static CRuntimeClass classCWnd;
    static CRuntimeClass* GetThisClass() { return &classCWnd; }
    static CObject* CreateObject() { return new CWnd; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCWnd; }

    CWnd();
    // Destroys the window if it still exists.
    ~CWnd() override;
    // A window can't be copied: it is one thing on the screen.
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // Window rectangle: in the parent's client coordinates for a child, in
    // screen coordinates for a top-level window. Set by Create and MoveWindow.
    CRect m_rect;
    CWnd* m_pParent = nullptr;  // null for a top-level window
    BOOL m_bVisible = FALSE;    // the window's own flag; see IsWindowVisible
    CString m_strText;          // window text (a field's content, a button's caption)

    // Creates the window at `rect`, as a child of `parent` or top-level, and
    // visible; a top-level window gets a surface of rect's size, cleared to
    // black, and the whole window is invalid (to be erased and painted).
    // FALSE if the window exists already or a top-level rect is empty.
    BOOL Create(const CRect& rect, CWnd* parent = nullptr);
    // Ends the window (and its surface); the object lives on. FALSE when
    // there was no window.
    BOOL DestroyWindow();
    // Non-null while the window exists.
    void* GetSafeHwnd() const { return m_hWnd; }

    // SW_HIDE hides, any other command shows. Returns the previous flag.
    // Showing an invalid window doesn't paint it: UpdateWindow does.
    BOOL ShowWindow(int cmd);
    // Non-zero when the window exists, its flag is set and so are those of
    // all its parents.
    BOOL IsWindowVisible() const;
    // Moves and resizes the window; a top-level window's surface is made
    // anew at the new size (its content is lost) and the window is invalid.
    void MoveWindow(const CRect& rect, BOOL bRepaint = TRUE);
    // (0, 0, width, height) of the window rectangle.
    void GetClientRect(CRect* rect) const;
    CRect GetClientRect() const;
    void GetWindowRect(CRect* rect) const;
    void SetWindowText(const CString& text) { m_strText = text; }
    void GetWindowText(CString& text) const { text = m_strText; }

    // Marks the whole window for repainting (a child marks its top-level
    // window's part); bErase asks for the background to be erased first.
    void Invalidate(BOOL bErase = TRUE);
    // Non-zero when the window is marked for repainting; `rect` (may be
    // null) receives the client rectangle then, an empty one otherwise.
    // bErase is accepted for the framework's signature and not used.
    BOOL GetUpdateRect(CRect* rect, BOOL bErase = FALSE) const;
    // Paints now if the window is visible and marked: OnEraseBkgnd when the
    // mark asks for it, then OnPaint, each with a fresh context. A child
    // passes the call to its top-level window.
    void UpdateWindow();
    // Invalidate, then UpdateWindow.
    void RedrawWindow();
    // Number of completed paints (OnPaint calls) since Create.
    int m_nPaints = 0;

    // A fresh context on the window's surface, moved to the window's origin
    // and clipped to it; null when there is no window. The window owns it:
    // give it back with ReleaseDC (contexts not given back go with the
    // window).
    CDC* GetDC();
    // Returns a context that GetDC gave. FALSE for any other pointer.
    BOOL ReleaseDC(CDC* dc);
    // The surface the window paints on (its top-level window's for a
    // child), or null without a window. For looking at, not for painting.
    const CDC* GetSurface() const;
    // The window's pixels (its own rectangle of the surface), Width x Height
    // of m_rect, rows top first. FALSE without a window.
    BOOL GetRGBA(CRgb* dst) const;
    // Writes the window's surface as PNG. FALSE without a window or when the
    // file can't be written.
    BOOL SavePng(const CString& path) const;

protected:
    // Paints the window on `dc`. The base paints nothing.
    virtual void OnPaint(CDC* dc);
    // Erases the background; the base fills the client rectangle with
    // Zan::backB. Returns non-zero when it erased.
    virtual BOOL OnEraseBkgnd(CDC* dc);

private:
    CWnd* TopLevel();
    const CWnd* TopLevel() const;
    CPoint OriginInTop() const;

    void* m_hWnd = nullptr;  // the window's state while it exists
    struct WndState;
    std::unique_ptr<WndState> m_pState;
};
