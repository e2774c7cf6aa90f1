#include <common/Expansion.h>

#include <common/Findings.h>

#include <krender/shading/Statement.h>

namespace krTools
{

namespace
{

/// The copies of illuminance blocks that the program holds.
double countCopies(const krShadingDag::StatementCompound& list, double lights)
{
    double copies = 0;
    for (unsigned i = 0; i < list.size(); ++i)
    {
        const krShadingDag::Statement& statement = *list.statement(i);
        const double below = countCopies(statement.children(), lights);
        copies += statement.type() == krShadingDag::StatementType::Illuminance ? lights * (1 + below) : below;
    }
    return copies;
}

} // namespace

bool checkExpansion(std::string_view program, const krShadingDag::ShadingNodeSpec& material, std::size_t lights)
{
    // Far more than any compiler takes.
    constexpr double kMostCopies = 10000;
    if (countCopies(material.body(), static_cast<double>(lights)) <= kMostCopies)
        return true;
    print(stderr, program, Severity::Error,
          "with so many lights the illuminance blocks within each other in " + inQuotes(material.name().view()) +
              " would come to more than 10000 copies");
    return false;
}

} // namespace krTools
