#include "InputError.h"

#include <common/Findings.h>
#include <common/PrintedMessage.h>

void InputError::print() const
{
    if (!fPlace.source)
        return krTools::printError(fPlace.origin, what());
    krTools::Findings findings;
    findings.error(fPlace.position, what());
    krTools::print(*fPlace.source, findings);
}
