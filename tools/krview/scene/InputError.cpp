#include "InputError.h"

#include <common/Findings.h>
#include <common/PrintedMessage.h>

void InputError::print(krTools::MessageOutput& output) const
{
    if (!fPlace.source)
        return krTools::printError(fPlace.origin, what(), output);
    krTools::Findings findings;
    findings.error(fPlace.position, what());
    krTools::print(*fPlace.source, findings, output);
}
