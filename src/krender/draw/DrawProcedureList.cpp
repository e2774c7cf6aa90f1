#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureList.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace
{

bool isNamed(const DrawProcedure* procedure, const krString::CString& name)
{
    return krString::equal(name, procedure->name());
}

} // namespace

DrawProcedureList::DrawProcedureList() = default;

DrawProcedureList::~DrawProcedureList() { clear(); }

DrawProcedure* DrawProcedureList::find(const krString::CString& name) const
{
    const auto found =
        std::ranges::find_if(fProcedures, [&name](const DrawProcedure* entry) { return isNamed(entry, name); });
    return found != fProcedures.end() ? *found : nullptr;
}

DrawProcedure* DrawProcedureList::find(const char* name) const
{
    return name ? find(krString::CString(name)) : nullptr;
}

unsigned DrawProcedureList::findAll(const krString::CString& name, DrawProcedureList& out) const
{
    unsigned count = 0;
    // Over a copy, for `out` may be this list.
    for (DrawProcedure* entry : std::vector(fProcedures))
        if (isNamed(entry, name) && out.add(entry, false))
            ++count;
    return count;
}

DrawProcedure* DrawProcedureList::item(unsigned index) const
{
    return index < fProcedures.size() ? fProcedures[index] : nullptr;
}

bool DrawProcedureList::add(DrawProcedure* procedure, bool uniqueName)
{
    return insertAt(procedure, static_cast<unsigned>(fProcedures.size()), uniqueName);
}

bool DrawProcedureList::insertAt(DrawProcedure* procedure, unsigned position, bool uniqueName)
{
    if (!accepts(procedure, uniqueName))
        return false;
    const auto index = std::min<std::size_t>(position, fProcedures.size());
    fProcedures.insert(fProcedures.begin() + static_cast<std::ptrdiff_t>(index), procedure);
    procedure->ref();
    return true;
}

bool DrawProcedureList::remove(DrawProcedure* procedure)
{
    if (!procedure)
        return false;
    // Out of the list first: the last unref() ends the procedure, and what its end calls may look into the list.
    const std::size_t count = std::erase(fProcedures, procedure);
    for (std::size_t i = 0; i < count; ++i)
        procedure->unref();
    return count != 0;
}

void DrawProcedureList::clear()
{
    for (const DrawProcedure* entry : std::exchange(fProcedures, {}))
        entry->unref();
}

bool DrawProcedureList::accepts(const DrawProcedure* procedure, bool uniqueName) const
{
    return procedure && !(uniqueName && find(procedure->name()));
}
