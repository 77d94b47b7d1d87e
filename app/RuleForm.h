#pragma once

#include "RenameRule.h"

class InterfaceFile;

// The rename rule as the window's controls give it, read through the one
// outlet reader (OutletValues).
namespace RuleForm {

// The whole rule the controls show, listing included.
RenameRule rule(const InterfaceFile &form);
// Sets the controls to show the rule. A popup that lacks the rule's case
// keeps its choice.
void apply(const InterfaceFile &form, const RenameRule &rule);

// With a leading-zeros control in the file, the counter is always padded.
bool prefixZerosConnected(const InterfaceFile &form);
bool suffixZerosConnected(const InterfaceFile &form);

} // namespace RuleForm
