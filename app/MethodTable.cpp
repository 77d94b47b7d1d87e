#include "MethodTable.h"

#include "ApplicationMethods.h"
#include "DesktopMethods.h"
#include "ScriptMethods.h"
#include "TextMethods.h"
#include "UiMethods.h"

MethodRegistry buildMethodTable()
{
    MethodRegistry registry;
    registerTextMethods(registry);
    registerScriptMethods(registry);
    registerDesktopMethods(registry);
    registerUiMethods(registry);
    registerApplicationMethods(registry);
    return registry;
}
