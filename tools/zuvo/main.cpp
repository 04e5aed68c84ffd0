// zuvo: the command line of the zuvo client library. Defines the commands
// and their options, runs the chosen one and maps failures to exit codes:
// 0 success, 1 rejected document or failed decryption, 2 usage error.
#include "common/Errors.h"
#include "zuvo/Commands.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

namespace {

using namespace zuvocli;

void addKeyOptions(CLI::App* command, KeyOptions& key) {
    CLI::Option* hex =
        command->add_option("--key", key.hex, "cipher key as 64 hex digits (see 'zuvo keygen')");
    CLI::Option* file =
        command->add_option("--key-file", key.file, "file holding the key's hex digits");
    hex->excludes(file);
    file->excludes(hex);
}

/// Prints one line "zuvo: <message>" on standard error.
void report(const std::string& message) {
    std::cerr << "zuvo: " << message << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Builds request documents, reads response documents and decodes payloads of "
                 "the zuvo control protocol.",
                 "zuvo");
    app.require_subcommand(1);
    app.set_version_flag("--version", ZUVO_VERSION);
    app.footer("Without --key or --key-file, payloads are Base64 and encryption is off.\n"
               "Exit codes: 0 success, 1 rejected document or failed decryption, 2 usage error.\n"
               "Example:\n  zuvo build ping --set softwareVersion=4.2.1");

    BuildOptions build;
    CLI::App* buildCommand = app.add_subcommand("build", "print the request document of a message");
    buildCommand->add_option("MESSAGE", build.message, "one of: " + requestMessageNames())
        ->required();
    buildCommand->add_option("--in", build.input, "JSON record file, '-' for standard input");
    buildCommand
        ->add_option("--set", build.settings, "field=value, repeatable; lists and numbers as JSON")
        ->take_all()
        ->expected(1);
    CLI::Option* rcOption = buildCommand->add_option("--rc", build.rc,
                                                     "the rc text of registration, renewal and "
                                                     "provisioning messages");
    addKeyOptions(buildCommand, build.key);
    buildCommand->footer(
        "Record fields are JSON keys named as in the request record; byte strings as Base64 "
        "text, profiles as identifiers. Every record has softwareVersion, uiVersion, "
        "serverTime, clientTime; the messages add:\n" +
        requestMessageTable() +
        "Lists are JSON arrays; idCookies of {\"name\", \"value\"} objects, the stream play "
        "times of {\"downloadableId\", \"playTime\"} objects. Fields not given keep their "
        "defaults (0, empty).\n"
        "Example:\n"
        "  zuvo build ping --set softwareVersion=4.2.1 --set clientTime=1700000000\n"
        "  echo '{\"movieId\": 70143836, \"videoProfiles\": [\"playready-h264mpl30-piff\"]}' "
        "| zuvo build authorization --in -");

    std::string parseType;
    std::string parseInput = "-";
    KeyOptions parseKey;
    bool parseVerbose = false;
    CLI::App* parseCommand =
        app.add_subcommand("parse", "print a response document's record as JSON");
    parseCommand->add_option("TYPE", parseType, "one of: " + responseTypeNames())->required();
    parseCommand->add_option("FILE", parseInput, "response document, '-' for standard input");
    addKeyOptions(parseCommand, parseKey);
    parseCommand->add_flag("--verbose", parseVerbose,
                           "on failure, add the parser's own report below the one-line reason");
    parseCommand->footer("Byte strings are printed as Base64, profiles as identifiers.\n"
                         "A rejected or malformed document prints one line on standard error, "
                         "FILE:LINE:COLUMN: reason (open elements, innermost first); FILE is "
                         "<stdin> for standard input, lines and columns count from 1.\n"
                         "Example:\n  zuvo parse prereg response.xml --key-file device.key");

    PayloadOptions payload;
    CLI::App* payloadCommand =
        app.add_subcommand("payload", "decode or decrypt payload text into its fragment");
    payloadCommand->add_flag("--encrypted", payload.encrypted,
                             "the payload is encrypted (needs the key)");
    payloadCommand->add_flag("--encode", payload.encode,
                             "the reverse: turn fragment text into payload text");
    CLI::Option* textOption = payloadCommand->add_option(
        "TEXT", payload.text, "payload text, '-' or nothing for standard input");
    addKeyOptions(payloadCommand, payload.key);
    payloadCommand->footer("Without --encrypted the payload is Base64 text.\n"
                           "Example:\n"
                           "  zuvo payload --encrypted --key-file device.key 'q0bG3Ke...'\n"
                           "  zuvo payload --encode --encrypted --key-file device.key "
                           "'<zuvo:servertime>12</zuvo:servertime>'");

    CLI::App* keygenCommand = app.add_subcommand("keygen", "print a fresh random key as hex");
    keygenCommand->footer("Example:\n  zuvo keygen > device.key");

    std::string demoHar;
    CLI::App* demoCommand =
        app.add_subcommand("demo", "run a scripted device session against a built-in server");
    demoCommand->add_option("--har", demoHar, "also write the session to this HAR file");
    demoCommand->footer("Example:\n  zuvo demo --har session.har");

    DecodeOptions decode;
    CLI::App* decodeCommand =
        app.add_subcommand("decode", "print a request, a response or a captured session as JSON");
    CLI::Option* decodeInput = decodeCommand->add_option(
        "FILE", decode.input, "request or response document, '-' for standard input");
    CLI::Option* decodeType = decodeCommand->add_option(
        "--type", decode.type, "parse a response with this type: " + responseTypeNames());
    CLI::Option* decodeHar = decodeCommand->add_option(
        "--har", decode.har, "decode every protocol exchange of this HAR file");
    decodeCommand->add_flag("--jsonl", decode.jsonl, "with --har: one JSON line per exchange")
        ->needs(decodeHar);
    decodeHar->excludes(decodeInput)->excludes(decodeType);
    addKeyOptions(decodeCommand, decode.key);
    decodeCommand->footer(
        "A request prints as its message and record fields (the form 'zuvo build --in' reads) "
        "with every payload opened; a response as 'zuvo parse' prints it, the parser chosen "
        "from its result.\n"
        "Example:\n"
        "  zuvo build ping --set clientTime=7 | zuvo decode\n"
        "  zuvo demo --har session.har >/dev/null\n"
        "  zuvo decode --har session.har --key "
        "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");

    ServeOptions serve;
    CLI::App* serveCommand = app.add_subcommand(
        "serve", "answer device requests over HTTP as the scripted server, until interrupted");
    serveCommand->add_option("--listen", serve.listen, "HOST:PORT to listen on; port 0 picks one")
        ->capture_default_str();
    serveCommand->add_option("--path", serve.path, "URL path of the protocol")
        ->capture_default_str();
    serveCommand->add_option("--scenario", serve.scenario, "JSON rules that bend some answers");
    serveCommand->add_option("--log", serve.log, "exchange log file (default: standard error)");
    serveCommand->add_option("--har", serve.har, "append every exchange to this HAR file");
    serveCommand->add_option("--max-body", serve.maxBody, "larger request bodies get 413")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    serveCommand
        ->add_option("--session-idle", serve.idleSeconds,
                     "seconds after which an unused device session is dropped")
        ->capture_default_str();
    addKeyOptions(serveCommand, serve.key);
    serveCommand->footer("Prints the address once listening; ends on SIGINT or SIGTERM.\n"
                         "Example:\n"
                         "  zuvo serve --listen 127.0.0.1:0 --key-file device.key "
                         "--scenario examples/serve-scenario.json");

    // Name an unknown command rather than report a missing one.
    if (argc > 1 && argv[1][0] != '-') {
        bool known = false;
        std::string commands;
        for (const CLI::App* command : app.get_subcommands({})) {
            known = known || command->get_name() == argv[1];
            commands += (commands.empty() ? "" : ", ") + command->get_name();
        }
        if (!known) {
            report(std::string("unknown command '") + argv[1] + "' (commands: " + commands + ")");
            return EXIT_USAGE;
        }
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0)
            return app.exit(e); // --help, --version
        report(std::string(e.what()) + " (see 'zuvo --help')");
        return EXIT_USAGE;
    }

    try {
        if (buildCommand->parsed()) {
            build.rcGiven = rcOption->count() > 0;
            return runBuild(build);
        }
        if (parseCommand->parsed())
            return runParse(parseType, parseInput, parseKey, parseVerbose);
        if (payloadCommand->parsed()) {
            payload.textGiven = textOption->count() > 0;
            return runPayload(payload);
        }
        if (keygenCommand->parsed())
            return runKeygen();
        if (decodeCommand->parsed())
            return runDecode(decode);
        if (serveCommand->parsed())
            return runServe(serve);
        return runDemo(demoHar);
    } catch (const UsageError& e) {
        report(e.what());
        return EXIT_USAGE;
    } catch (const RejectedError& e) {
        report(e.what());
        if (!e.details.empty())
            std::cerr << e.details << (e.details.back() == '\n' ? "" : "\n") << std::flush;
        return EXIT_REJECTED;
    } catch (const std::exception& e) {
        // A library or system failure the commands did not anticipate.
        report(e.what());
        return EXIT_REJECTED;
    }
}
