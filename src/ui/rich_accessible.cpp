#include "ui/rich_accessible.h"

#include "base/system_library.h"
#include "base/wide.h"

#include <atomic>
#include <memory>

namespace girder::ui {
namespace {

VARIANT number(long value) noexcept
{
    VARIANT made{};
    made.vt = VT_I4;
    made.lVal = value;
    return made;
}

class accessible final : public rich_accessible {
public:
    explicit accessible(accessible_view& view) : view_(&view) {}
    accessible(const accessible&) = delete;
    accessible& operator=(const accessible&) = delete;
    ~accessible() = default;

    void disconnect() noexcept override { view_ = nullptr; }

    STDMETHODIMP QueryInterface(REFIID wanted, void** object) noexcept override
    {
        const bool known =
            wanted == __uuidof(IUnknown) || wanted == __uuidof(IDispatch) || wanted == __uuidof(IAccessible);
        *object = known ? static_cast<IAccessible*>(this) : nullptr;
        if (known)
            AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() noexcept override
    {
        const ULONG left = --references_;
        if (left == 0)
            const std::unique_ptr<accessible> last(this);
        return left;
    }

    // Assistive programs call the interface itself; nobody needs it by name.
    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override
    {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) noexcept override
    {
        return E_NOTIMPL;
    }

    STDMETHODIMP get_accParent(IDispatch** parent) noexcept override
    {
        *parent = nullptr;
        return answer([&] {
            const auto from_window =
                accessibility_.function<decltype(::AccessibleObjectFromWindow)>("AccessibleObjectFromWindow");
            return from_window(view_->window(), static_cast<DWORD>(OBJID_WINDOW), __uuidof(IDispatch),
                               reinterpret_cast<void**>(parent));
        });
    }
    STDMETHODIMP get_accChildCount(long* count) noexcept override
    {
        *count = 0;
        return answer([&] {
            *count = link_count();
            return S_OK;
        });
    }
    /// The links are simple elements: they have no object of their own.
    STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) noexcept override
    {
        *object = nullptr;
        return about(child, [](int) { return S_FALSE; });
    }
    STDMETHODIMP get_accName(VARIANT child, BSTR* name) noexcept override
    {
        return about(child, [&](int link) {
            return give(link < 0 ? view_->content().text : view_->content().link_text(link), name);
        });
    }
    STDMETHODIMP get_accValue(VARIANT child, BSTR* value) noexcept override
    {
        *value = nullptr;
        return about(child, [&](int link) {
            return link < 0 ? S_FALSE : give(view_->content().addresses[static_cast<std::size_t>(link)], value);
        });
    }
    STDMETHODIMP get_accDescription(VARIANT child, BSTR* text) noexcept override { return nothing(child, text); }
    STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) noexcept override
    {
        return about(child, [&](int link) {
            *role = number(link < 0 ? ROLE_SYSTEM_STATICTEXT : ROLE_SYSTEM_LINK);
            return S_OK;
        });
    }
    STDMETHODIMP get_accState(VARIANT child, VARIANT* state) noexcept override
    {
        return about(child, [&](int link) {
            long bits = link < 0 ? STATE_SYSTEM_READONLY : STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE;
            if (link >= 0 && link == view_->focused_link())
                bits |= STATE_SYSTEM_FOCUSED;
            if (!::IsWindowVisible(view_->window()))
                bits |= STATE_SYSTEM_INVISIBLE;
            *state = number(bits);
            return S_OK;
        });
    }
    STDMETHODIMP get_accHelp(VARIANT child, BSTR* text) noexcept override { return nothing(child, text); }
    STDMETHODIMP get_accHelpTopic(BSTR* file, VARIANT child, long*) noexcept override { return nothing(child, file); }
    STDMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* keys) noexcept override { return nothing(child, keys); }
    STDMETHODIMP get_accFocus(VARIANT* child) noexcept override
    {
        *child = {};
        return answer([&] {
            const int focused = view_->focused_link();
            if (focused < 0)
                return S_FALSE;
            *child = number(focused + 1);
            return S_OK;
        });
    }
    STDMETHODIMP get_accSelection(VARIANT* children) noexcept override
    {
        *children = {};
        return S_FALSE;
    }
    STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) noexcept override
    {
        *action = nullptr;
        return about(child, [&](int link) { return link < 0 ? S_FALSE : give(u"Jump", action); });
    }
    STDMETHODIMP accSelect(long flags, VARIANT child) noexcept override
    {
        return about(child, [&](int link) {
            if (link < 0 || flags != SELFLAG_TAKEFOCUS)
                return E_INVALIDARG;
            view_->focus_link(link);
            return S_OK;
        });
    }
    STDMETHODIMP accLocation(long* left, long* top, long* width, long* height, VARIANT child) noexcept override
    {
        return about(child, [&](int link) {
            const RECT place = place_of(link);
            *left = place.left;
            *top = place.top;
            *width = place.right - place.left;
            *height = place.bottom - place.top;
            return S_OK;
        });
    }
    STDMETHODIMP accNavigate(long direction, VARIANT start, VARIANT* end) noexcept override
    {
        *end = {};
        return about(start, [&](int link) {
            int next = -1;
            if (direction == NAVDIR_FIRSTCHILD && link < 0)
                next = 0;
            else if (direction == NAVDIR_LASTCHILD && link < 0)
                next = link_count() - 1;
            else if (direction == NAVDIR_NEXT && link >= 0)
                next = link + 1;
            else if (direction == NAVDIR_PREVIOUS && link >= 0)
                next = link - 1;
            if (next < 0 || next >= link_count())
                return S_FALSE;
            *end = number(next + 1);
            return S_OK;
        });
    }
    STDMETHODIMP accHitTest(long x, long y, VARIANT* child) noexcept override
    {
        *child = {};
        return answer([&] {
            const RECT all = place_of(-1);
            if (!::PtInRect(&all, {x, y}))
                return S_FALSE;
            *child = number(CHILDID_SELF);
            for (const link_area& each : view_->visible_links()) {
                const RECT place = on_screen(each.place);
                if (::PtInRect(&place, {x, y}))
                    *child = number(each.link + 1);
            }
            return S_OK;
        });
    }
    STDMETHODIMP accDoDefaultAction(VARIANT child) noexcept override
    {
        return about(child, [&](int link) {
            if (link < 0)
                return DISP_E_MEMBERNOTFOUND;
            view_->open_link(link);
            return S_OK;
        });
    }
    STDMETHODIMP put_accName(VARIANT, BSTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_accValue(VARIANT, BSTR) noexcept override { return E_NOTIMPL; }

private:
    int link_count() const noexcept { return static_cast<int>(view_->content().addresses.size()); }

    /// No exception goes to the caller, which may be another program.
    template <typename Action>
    HRESULT answer(Action action) noexcept
    try {
        return view_ ? action() : CO_E_OBJNOTCONNECTED;
    } catch (...) {
        return E_FAIL;
    }

    /// Calls the action with the link that `child` stands for, -1 for the text itself.
    template <typename Action>
    HRESULT about(const VARIANT& child, Action action) noexcept
    {
        return answer([&]() -> HRESULT {
            if (child.vt != VT_I4 || child.lVal < CHILDID_SELF || child.lVal > link_count())
                return E_INVALIDARG;
            return action(static_cast<int>(child.lVal) - 1);
        });
    }

    HRESULT nothing(const VARIANT& child, BSTR* text) noexcept
    {
        *text = nullptr;
        return about(child, [](int) { return S_FALSE; });
    }

    HRESULT give(std::u16string_view text, BSTR* string) const
    {
        const auto allocate = automation_.function<decltype(::SysAllocStringLen)>("SysAllocStringLen");
        *string = allocate(as_wide(text.data()), static_cast<UINT>(text.size()));
        return *string ? S_OK : E_OUTOFMEMORY;
    }

    RECT on_screen(const area& place) const noexcept
    {
        RECT on_screen = as_rectangle(place);
        ::MapWindowPoints(view_->window(), nullptr, reinterpret_cast<POINT*>(&on_screen), 2);
        return on_screen;
    }

    /// A link that is broken over lines has the place that surrounds its parts.
    RECT place_of(int link)
    {
        RECT whole{};
        if (link < 0)
            ::GetWindowRect(view_->window(), &whole);
        else
            for (const link_area& each : view_->visible_links())
                if (each.link == link) {
                    const RECT part = on_screen(each.place);
                    ::UnionRect(&whole, &whole, &part);
                }
        return whole;
    }

    system_library accessibility_{u"oleacc.dll"};
    system_library automation_{u"oleaut32.dll"};
    std::atomic<ULONG> references_ = 1;
    accessible_view* view_;
};

} // namespace

unique_com<rich_accessible> make_accessible(accessible_view& view)
{
    return unique_com<rich_accessible>(std::make_unique<accessible>(view).release());
}

LRESULT hand_out_accessible(IAccessible& object, WPARAM wparam) noexcept
try {
    const system_library accessibility(u"oleacc.dll");
    const auto hand_out = accessibility.function<decltype(::LresultFromObject)>("LresultFromObject");
    return hand_out(__uuidof(IAccessible), wparam, &object);
} catch (...) {
    return 0;
}

} // namespace girder::ui
