// Lays out an application directory: layoutoffice INSTALLED-SET OFFICE

#include "core/Failure.h"
#include "maintenance/Office.h"

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "layoutoffice INSTALLED-SET OFFICE\n";
        return 2;
    }
    try {
        LayOutOffice(argv[1], argv[2]);
    } catch (const RunTimeFailure& failure) {
        std::cerr << "layoutoffice: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
