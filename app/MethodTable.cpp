#include "MethodTable.h"

#include "ScriptMethods.h"
#include "TextMethods.h"

MethodRegistry buildMethodTable()
{
    MethodRegistry registry;
    registerTextMethods(registry);
    registerScriptMethods(registry);
    return registry;
}
