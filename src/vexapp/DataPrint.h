// Printing and print preview of a data window.
#pragma once

class CDataWindow;

// Both ask which cases, and ask again before a million of them or more.
void PrintData(CDataWindow& window);
void PreviewData(CDataWindow& window);
