#pragma once

#include "RenameRule.h"

#include <QVariantList>

class InterfaceFile;

// The rename rule as the window's controls give it, read through the one
// outlet reader (OutletValues).
namespace RuleForm {

// The whole rule the controls show, listing included.
RenameRule rule(const InterfaceFile &form);
// Sets the controls to show the rule. A popup that lacks the rule's case
// keeps its choice.
void apply(const InterfaceFile &form, const RenameRule &rule);

// The 24 entries of setConstantData:, from the controls as they stand.
QVariantList settings(const InterfaceFile &form);
// The date choices of the two date popups: 1 now, 2 created, 3 modified.
qint32 prefixDateChoice(const InterfaceFile &form);
qint32 suffixDateChoice(const InterfaceFile &form);
// With a leading-zeros control in the file, the counter is always padded.
bool prefixZerosConnected(const InterfaceFile &form);
bool suffixZerosConnected(const InterfaceFile &form);

} // namespace RuleForm
