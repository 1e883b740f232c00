// Fills the device database of a Wine prefix with COM ports:
//
//     register_ports.exe                   removes those of earlier runs
//     register_ports.exe COM3 NAME ...     removes them and adds ports, each with its friendly name

#include "base/system_error.h"
#include "base/wide.h"
#include "device_database/device_database.h"

#include <cstdlib>
#include <iostream>

int wmain(int argc, wchar_t** argv)
try {
    device_database::remove_port_devices();
    for (int i = 1; i + 1 < argc; i += 2)
        device_database::add_port(girder::as_utf16(argv[i]), girder::as_utf16(argv[i + 1]));
    return EXIT_SUCCESS;
} catch (const girder::system_error& error) {
    std::cerr << "register_ports: " << error.what() << " failed with code " << error.code() << '\n';
    return EXIT_FAILURE;
}
