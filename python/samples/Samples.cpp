// zuvo_py_samples DIR HEXKEY: writes the benchmarks' generated responses,
// payloads sealed with the key, for the Python tests and benchmark:
// authorization-60k.xml, authorization-1m.xml, prereg.xml, register.xml,
// authrenew.xml.
#include "ResponseGenerator.h"
#include "common/Keys.h"

#include <fstream>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: zuvo_py_samples DIR HEXKEY\n";
        return 2;
    }
    const std::string dir = argv[1];
    krel::KrelContext context(zuvocli::parseHexKey(argv[2]));
    auto write = [&](const char* name, const std::string& text) {
        std::ofstream(dir + "/" + name, std::ios::binary) << text;
    };
    write("authorization-60k.xml",
          zuvobench::authorizationResponse(zuvobench::shapeForSize(60 * 1024, context), context));
    write("authorization-1m.xml",
          zuvobench::authorizationResponse(zuvobench::shapeForSize(1024 * 1024, context), context));
    write("prereg.xml", zuvobench::preregResponse(context));
    write("register.xml", zuvobench::registrationResponse(context));
    write("authrenew.xml", zuvobench::renewalResponse(context));
    return 0;
}
