// Calls every descriptor, conversion and script selector once by its exact
// name; the printed lines are compared with script_bridge.expected.
function show(label, value) {
    var descriptor = value !== null && typeof value === "object" && !Array.isArray(value)
        && !(value instanceof Date) && Object.getPrototypeOf(value) !== Object.prototype;
    if (descriptor)
        value = "<" + callMethod(value, "descriptorType") + ">";
    print(label, typeof value === "string" ? JSON.stringify(value) : value);
}
function bytes(list) { return new Uint8Array(list).buffer; }
var D = "NSAppleEventDescriptor";

var int16 = callClassMethod(D, "descriptorWithInt16:", [-2]);
show("descriptorWithInt16:", int16);
show("int16Value", callMethod(int16, "int16Value"));
var magn = callClassMethod(D, "descriptorWithUnsignedInt32:", [-1]);
show("descriptorWithUnsignedInt32:", magn);
show("unsignedInt32Value", callMethod(magn, "unsignedInt32Value"));
var sing = callClassMethod(D, "descriptorWithFloat32:", [0.1]);
show("descriptorWithFloat32:", sing);
show("float32Value", callMethod(sing, "float32Value"));
var doub = callClassMethod(D, "descriptorWithFloat64:", [0.1]);
show("descriptorWithFloat64:", doub);
show("float64Value", callMethod(doub, "float64Value"));
var ldt = callClassMethod(D, "descriptorWithLongDateTime:", [3786825600]);
show("descriptorWithLongDateTime:", ldt);
show("longDateTimeValue", callMethod(ldt, "longDateTimeValue"));
show("dateWithAEDesc:", callClassMethod("NSDate", "dateWithAEDesc:", [ldt]));
show("isMissingValue", callMethod(callClassMethod(D, "descriptorWithTypeCode:", ["msng"]), "isMissingValue"));
callMethod(callMethod([], "aeDescriptorValue"), "logDescriptorType");
show("objCObjectValue", callMethod(doub, "objCObjectValue"));

show("aeDescriptorValue string", callMethod("text", "aeDescriptorValue"));
show("aeDescriptorValue number", callMethod(3, "aeDescriptorValue"));
show("aeDescriptorValue array", callMethod([1, "a"], "aeDescriptorValue"));
show("aeDescriptorValue dictionary", callMethod({name: 3}, "aeDescriptorValue"));
show("aeDescriptorValue date", callMethod(new Date(2024, 0, 1), "aeDescriptorValue"));
show("aeDescriptorValue descriptor", callMethod(int16, "aeDescriptorValue"));
show("arrayWithAEDesc:", callClassMethod("NSArray", "arrayWithAEDesc:", [callMethod([1, [2]], "aeDescriptorValue")]));
show("dictionaryWithAEDesc:", callClassMethod("NSDictionary", "dictionaryWithAEDesc:", [callMethod({a: [true]}, "aeDescriptorValue")]));
show("stringWithAEDesc:", callClassMethod("NSString", "stringWithAEDesc:", [callMethod(42, "aeDescriptorValue")]));
show("nullWithAEDesc:", callClassMethod("NSNull", "nullWithAEDesc:", [int16]));
show("numberWithAEDesc:", callClassMethod("NSNumber", "numberWithAEDesc:", [callClassMethod(D, "descriptorWithDescriptorType:data:", ["comp", bytes([5, 0, 0, 0, 0, 0, 0, 0])])]));
callClassMethod(D, "registerConversionSubroutine:selector:forDescriptorTypes:", ["NSString", "stringWithAEDesc:", ["shor", 0]]);
show("registerConversionSubroutine:selector:forDescriptorTypes:", callMethod(int16, "objCObjectValue"));

show("ROZ_DescriptorValueWithSignedIntP:byteCount:", callMethod(7, "ROZ_DescriptorValueWithSignedIntP:byteCount:", [bytes([7, 0]), 2]));
show("ROZ_DescriptorValueWithUnsignedIntP:byteCount:", callMethod(7, "ROZ_DescriptorValueWithUnsignedIntP:byteCount:", [bytes([7, 0, 0, 0, 0, 0, 0, 0]), 8]));
show("ROZ_DescriptorValueWithFloatP:byteCount:", callMethod(7, "ROZ_DescriptorValueWithFloatP:byteCount:", [bytes([]), 0]));
show("ROZ_NumberWithSignedIntP:byteCount:", callClassMethod("NSNumber", "ROZ_NumberWithSignedIntP:byteCount:", [bytes([255, 255]), 2]));
show("ROZ_NumberWithUnsignedIntP:byteCount:", callClassMethod("NSNumber", "ROZ_NumberWithUnsignedIntP:byteCount:", [bytes([255, 255]), 2]));
show("ROZ_NumberWithFloatP:byteCount:", callClassMethod("NSNumber", "ROZ_NumberWithFloatP:byteCount:", [new Float64Array([0.1]).buffer, 8]));
try { callClassMethod("NSNumber", "ROZ_NumberWithSignedIntP:byteCount:", [bytes([1, 2, 3]), 3]); }
catch (e) { show("raises", e.name + ": " + e.reason); }

var script = callClassMethod("NSAppleScript", "scriptWithSource:", ["function execute_perl(p) { return 'ran ' + p; }\nfunction fails() { throw new Error('no') }"]);
show("ROZ_runScriptSubroutine:", callMethod(script, "ROZ_runScriptSubroutine:", ["fails"]));
show("ROZ_runScriptSubroutine:withParameter:", callMethod(script, "ROZ_runScriptSubroutine:withParameter:", ["Execute_Perl", "s/a/b/"]));
show("ROZ_runScriptSubroutine:withParameters:", callMethod(script, "ROZ_runScriptSubroutine:withParameters:", ["EXECUTE_PERL", ["x", null, "y"]]));
show("ROZ_runScriptSubroutine:withParametersFromArray:", callMethod(script, "ROZ_runScriptSubroutine:withParametersFromArray:", ["execute_perl", [1]]));
var error = {};
show("ROZ_ExecuteWithoutTranslationSubroutine:error:withParametersDesc:", callMethod(script, "ROZ_ExecuteWithoutTranslationSubroutine:error:withParametersDesc:", ["nothing", error, callMethod([], "aeDescriptorValue")]));
show("error number", error.NSAppleScriptErrorNumber);
show("ROZ_HandleASError:", callMethod(script, "ROZ_HandleASError:", [{NSAppleScriptErrorBriefMessage: "brief"}]));
show("ROZ_subroutinesInScriptFile:", callClassMethod("NSAppleScript", "ROZ_subroutinesInScriptFile:", ["/nonexistent"]));
show("ROZ_validSubroutinesFromArray:inScriptFile:", callClassMethod("NSAppleScript", "ROZ_validSubroutinesFromArray:inScriptFile:", [["missing"], "/nonexistent"]));
show("offsetOfData:", callMethod(bytes([1, 2, 3]), "offsetOfData:", [bytes([2, 3])]));
show("runScript:", callClassMethod("ROZ_MiscMethods", "runScript:", ["[1, 'two', {three: 3.5}]"]));
show("runScriptFile:", callClassMethod("ROZ_MiscMethods", "runScriptFile:", ["/nonexistent.js"]));
