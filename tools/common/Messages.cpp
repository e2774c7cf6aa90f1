#include <common/Messages.h>

#include <algorithm>

namespace krTools
{

void Messages::add(const std::vector<krFrontend::ProgramDiagnostic>& problems)
{
    for (auto problem = problems.begin(); problem != problems.end(); ++problem)
    {
        if (std::any_of(problems.begin(), problem,
                        [problem](const krFrontend::ProgramDiagnostic& before)
                        { return before.diagnostic.text == problem->diagnostic.text; }))
            continue;
        if (problem->module)
            add(problem->module->sources(), problem->diagnostic);
        else
            error(problem->diagnostic.text);
    }
}

} // namespace krTools
