#pragma once

class MethodRegistry;

// The whole-list methods of MiscMethods (sorting, filters, projections,
// "ui" strings).
void registerCollectionMethods(MethodRegistry &registry);
