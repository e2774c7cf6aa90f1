#include <krender/krender.h>

int main()
{
    krShadingDag::ShadingParser parser;
    krShadingDag::ShadingNodeSpec* spec = nullptr;
    if (!parser.parseString("float half(float a) { output = 0.5 * a; }", &spec))
        return 1;
    delete spec;
    return 0;
}
