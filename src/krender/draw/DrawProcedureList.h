#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>
#include <krender/core/Ref.h>
#include <krender/platform/String.h>

#include <vector>

class DrawProcedure;

/// Draw procedures in the order in which the host runs them. Each entry holds a reference, so a procedure that is in the
/// list twice is held twice. No entry is null.
class KRENDER_EXPORT DrawProcedureList : public IResource
{
public:
    /// Makes an empty list.
    DrawProcedureList();
    /// Clears the list.
    ~DrawProcedureList() override;

    /// The first entry with this name, borrowed; null when there is none.
    [[nodiscard]] DrawProcedure* find(const krString::CString& name) const;
    /// As above; null also for a null name.
    [[nodiscard]] DrawProcedure* find(const char* name) const;
    /// Appends every entry with this name to `out`, which refs it; `out` may be this list.
    /// @return  the number of entries found
    unsigned findAll(const krString::CString& name, DrawProcedureList& out) const;
    /// The entry at an index from 0, borrowed; null past the end.
    [[nodiscard]] DrawProcedure* item(unsigned index) const;

    /// Appends a procedure and refs it.
    /// @param uniqueName  refuse the procedure when the list has an entry with its name
    /// @return  false, with nothing done, when the procedure is refused or null
    bool add(DrawProcedure* procedure, bool uniqueName);
    /// As add(), but inserts before the entry at `position`, an index from 0; appends when there is no such entry.
    bool insertAt(DrawProcedure* procedure, unsigned position, bool uniqueName);
    /// Removes every entry of this procedure and unrefs it once for each.
    /// @return  whether there was one; false for null
    bool remove(DrawProcedure* procedure);
    /// Empties the list, then unrefs what it held.
    void clear();

private:
    [[nodiscard]] bool accepts(const DrawProcedure* procedure, bool uniqueName) const;

    std::vector<Ref<DrawProcedure>> fProcedures;
};
