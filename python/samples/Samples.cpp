// zuvo_py_samples DIR HEXKEY: writes the benchmarks' generated responses,
// payloads sealed with the key, for the Python tests and benchmark:
// authorization-60k.xml, authorization-1m.xml, prereg.xml, register.xml,
// authrenew.xml.
#include "ResponseGenerator.h"
#include "common/Keys.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: zuvo_py_samples DIR HEXKEY\n";
        return 2;
    }
    const std::string dir = argv[1];
    std::vector<unsigned char> key;
    try {
        key = zuvocli::parseHexKey(argv[2]);
    } catch (const std::exception& e) {
        std::cerr << "zuvo_py_samples: " << e.what() << '\n';
        return 2;
    }
    krel::KrelContext context(key);
    std::error_code made;
    std::filesystem::create_directories(dir, made);
    bool failed = false;
    auto write = [&](const char* name, const std::string& text) {
        const std::string path = dir + "/" + name;
        std::ofstream file(path, std::ios::binary);
        file << text;
        file.close();
        if (!file) {
            std::cerr << "zuvo_py_samples: cannot write " << path << '\n';
            failed = true;
        }
    };
    write("authorization-60k.xml",
          zuvobench::authorizationResponse(zuvobench::shapeForSize(60 * 1024, context), context));
    write("authorization-1m.xml",
          zuvobench::authorizationResponse(zuvobench::shapeForSize(1024 * 1024, context), context));
    write("prereg.xml", zuvobench::preregResponse(context));
    write("register.xml", zuvobench::registrationResponse(context));
    write("authrenew.xml", zuvobench::renewalResponse(context));
    return failed ? 1 : 0;
}
