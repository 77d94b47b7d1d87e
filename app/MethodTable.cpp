#include "MethodTable.h"

#include "DesktopMethods.h"
#include "ScriptMethods.h"
#include "TextMethods.h"

MethodRegistry buildMethodTable()
{
    MethodRegistry registry;
    registerTextMethods(registry);
    registerScriptMethods(registry);
    registerDesktopMethods(registry);
    return registry;
}
