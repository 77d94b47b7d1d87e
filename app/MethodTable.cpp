#include "MethodTable.h"

#include "TextMethods.h"

MethodRegistry buildMethodTable()
{
    MethodRegistry registry;
    registerTextMethods(registry);
    return registry;
}
