#pragma once
#include <krender/core/IResource.h>

#include <vector>

class DrawProcedure;

/// Draw procedures in the order in which the host runs them. The list holds a reference for each of its entries, so a
/// procedure that stands in it twice is held twice. No entry is null.
class KRENDER_EXPORT DrawProcedureList : public IResource
{
public:
    DrawProcedureList();
    /// Clears the list.
    ~DrawProcedureList() override;

    /// The first entry of a name, borrowed; null when there is none.
    [[nodiscard]] DrawProcedure* find(const krString::CString& name) const;
    /// As above; null also for a null name.
    [[nodiscard]] DrawProcedure* find(const char* name) const;
    /// Appends every entry of a name to `out`, which takes references of its own; `out` may be this list.
    /// @return  the number of entries found
    unsigned findAll(const krString::CString& name, DrawProcedureList& out) const;
    /// The entry at an index from 0, borrowed; null past the end.
    [[nodiscard]] DrawProcedure* item(unsigned index) const;

    /// Appends a procedure and refs it.
    /// @param uniqueName  refuse a procedure whose name the list has already
    /// @return  false, and nothing done, when refused or null
    bool add(DrawProcedure* procedure, bool uniqueName);
    /// As add(), but ahead of the entry at `position`; at the end when there is no such entry.
    bool insertAt(DrawProcedure* procedure, unsigned position, bool uniqueName);
    /// Takes every entry of this procedure out and gives up a reference for each.
    /// @return  whether there was one; false for null
    bool remove(DrawProcedure* procedure);
    /// Empties the list and gives its references up.
    void clear();

private:
    [[nodiscard]] bool accepts(const DrawProcedure* procedure, bool uniqueName) const;

    std::vector<DrawProcedure*> fProcedures;
};
