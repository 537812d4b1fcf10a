// The field-width rule: how many bytes a variable's name takes in a file of a given format kind.
#pragma once

// 8 for the old layout (kind 1), 16 for the new one (kind 2) and where no layout is chosen yet.
int FieldWidth(int formatKind);
