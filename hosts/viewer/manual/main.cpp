// Writes the viewer's page of the manual to the standard output.

#include "hosts/viewer/manual/ManPage.h"

#include <iostream>

int main()
{
    std::cout << qPrintable(ManPage::text());
    return std::cout.flush() ? 0 : 1;
}
