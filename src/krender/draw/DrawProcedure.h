#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>
#include <krender/platform/String.h>

class DrawProcedureData;

/// A named hook that the host runs at a point of its drawing, for example to draw items of its own. Its callback, or the
/// execute() of a derived class, does the work.
class KRENDER_EXPORT DrawProcedure : public IResource
{
public:
    /// Does the work; both arguments are borrowed for the call.
    using ExecuteCallback = void (*)(DrawProcedure& procedure, const DrawProcedureData& data);
    /// Releases user data. Its answer is not used.
    using DestroyUserData = bool (*)(void* userData);

    /// Makes a disabled procedure with an empty name, without a callback or user data.
    DrawProcedure();
    /// As above, with a copy of the name.
    explicit DrawProcedure(const krString::CString& name);
    /// Calls the destroy function, if one is set. Deliberate: also when the user data is null.
    ~DrawProcedure() override;

    /// Calls the callback with this procedure and `data`; without a callback nothing happens. Deliberate: isEnabled() is
    /// not looked at; the caller does that.
    virtual void execute(const DrawProcedureData& data);
    /// False at first.
    [[nodiscard]] virtual bool isEnabled() const;
    virtual void enable(bool enabled);

    /// Null without user data.
    [[nodiscard]] void* userData() const noexcept { return fUserData; }

    /// Replaces the user data. The old data, unless null, is first handed to its destroy function, if it has one.
    /// @param data     may be null
    /// @param destroy  called with `data` when that is replaced or the procedure ends; null leaves `data` to the host
    void setUserData(void* data, DestroyUserData destroy);
    /// @param callback  null removes the callback
    void setExecuteCallback(ExecuteCallback callback) noexcept { fExecuteCallback = callback; }

private:
    bool fEnabled = false;
    void* fUserData = nullptr;
    DestroyUserData fDestroyUserData = nullptr;
    ExecuteCallback fExecuteCallback = nullptr;

protected:
    /// For derived classes; the library only makes it null at first.
    void* fSpare = nullptr;
};
