#pragma once
#include <krender/core/IResource.h>

class DrawProcedureData;

/// A named hook that the host runs at a point of its drawing, for example to draw items of its own. It does what its
/// callback does, or what a derived class makes of execute().
class KRENDER_EXPORT DrawProcedure : public IResource
{
public:
    /// Does the drawing; both arguments are borrowed for the call.
    using ExecuteCallback = void (*)(DrawProcedure& procedure, const DrawProcedureData& data);
    /// Ends user data. Its answer is for the host's own use; the library does not look at it.
    using DestroyUserData = bool (*)(void* userData);

    /// Makes a procedure with an empty name, disabled, without callback and user data.
    DrawProcedure();
    explicit DrawProcedure(const krString::CString& name);
    /// Calls the destroy function, if one is set, even when there is no user data: it may also be used to learn of the
    /// procedure's end.
    ~DrawProcedure() override;

    /// Calls the callback with this procedure and `data`; without a callback nothing happens. Whether the procedure is
    /// enabled is for the caller to ask first.
    virtual void execute(const DrawProcedureData& data);
    /// False until enabled.
    [[nodiscard]] virtual bool isEnabled() const;
    virtual void enable(bool enabled);

    [[nodiscard]] void* userData() const noexcept { return fUserData; }

    /// Attaches user data. Data that is attached already is first handed to the destroy function that came with it.
    /// @param data     may be null
    /// @param destroy  ends `data` when it is replaced or the procedure ends; null leaves it to the host
    void setUserData(void* data, DestroyUserData destroy);
    /// @param callback  null takes the callback away
    void setExecuteCallback(ExecuteCallback callback) noexcept { fExecuteCallback = callback; }

private:
    bool fEnabled = false;
    void* fUserData = nullptr;
    DestroyUserData fDestroyUserData = nullptr;
    ExecuteCallback fExecuteCallback = nullptr;

protected:
    /// At a derived class's disposal; never touched here.
    void* fSpare = nullptr;
};
