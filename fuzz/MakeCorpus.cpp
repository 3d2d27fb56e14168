// SPDX-License-Identifier: Apache-2.0
//
// usage: fuzz_make_corpus FOLDER
//        fuzz_make_corpus --check FOLDER
//
// Writes the seeds that the fuzzers begin with into a folder a target. Those in fuzz/corpus are its
// output; seeds that mended bugs left lie beside them. --check writes nothing, and fails when a
// seed of the FOLDER is missing or is another one.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/Seeds.h"

namespace avitest {

namespace {

namespace fs = std::filesystem;

// A file with orders and the byte that counts them: see fuzz/Orders.h.
Bytes input(const Bytes& file, const Bytes& orders) {
    const auto count = static_cast<uint8_t>(orders.size());
    return ByteWriter().bytes(file).bytes(orders).u8(count).take();
}

// Switches and the way of the opening, then: a seek in each mode, another source of a track, reads
// whose buffers are kept, a stop, a second extractor, and a source that is freed. See Player.cpp.
Bytes playerOrders(uint8_t number) {
    ByteWriter out;
    out.u8(number % 4).u8(number);
    for (const uint8_t mode : {0, 1, 2, 3, 4}) {
        out.u8(4).u8(mode).u8(mode + 8).u8(12).u8(0x09).u8(mode);
        out.u8(0).u8(mode + 1).u8(2);
    }
    out.u8(10).u8(0).u8(8).u8(2);                // another source of track 0, started
    out.u8(15).u8(0).u8(15).u8(0).u8(14).u8(0);  // buffers kept, given back
    out.u8(8).u8(0).u8(8).u8(0);                 // stopped, started
    out.u8(11).u8(3).u8(13).u8(1);               // queries
    out.u8(12).u8(0).u8(1).u8(9).u8(0).u8(0);    // another extractor; the first source freed
    return out.take();
}

// Every kind of size, with as many faults as the seed's number says: see UnsteadySource.cpp.
Bytes sourceOrders(uint8_t number) {
    ByteWriter out;
    switch (number % 8) {
        case 0:
        case 6:
        case 7:
            out.u8(number % 8);
            break;
        case 1:
        case 5:
            out.u8(number % 8).u8(4).u8(1).u8(number);
            break;
        default:
            out.u8(number % 8).u8(1).u8(number);
            break;
    }
    out.u8(number % 3);
    for (uint8_t i = 0; i < number % 3; ++i) {
        out.u8(static_cast<uint8_t>(number + i)).u8(5).u8(2).u8(static_cast<uint8_t>(10 * number));
        if ((number + i) / 2 % 3 == 2) out.u8(40);
    }
    return out.bytes(playerOrders(number)).take();
}

std::vector<Seed> withOrders(Bytes (*orders)(uint8_t number)) {
    std::vector<Seed> seeds = fileSeeds();
    uint8_t number = 0;
    for (Seed& seed : seeds)
        seed.bytes = input(seed.bytes, orders(number++));
    return seeds;
}

void write(const fs::path& file, const Bytes& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out.exceptions(std::ios::failbit | std::ios::badbit);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

void check(const fs::path& file, const Bytes& bytes) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> there(std::istreambuf_iterator<char>(in), {});
    if (!in.is_open() || Bytes(there.begin(), there.end()) != bytes) {
        throw std::runtime_error(file.string() + " is not what fuzz_make_corpus makes");
    }
}

void forEachSeed(const fs::path& folder, void (*act)(const fs::path& file, const Bytes& bytes)) {
    const std::pair<const char*, std::vector<Seed>> targets[] = {
        {"extractor_fuzzer", withOrders(playerOrders)},
        {"source_fuzzer", withOrders(sourceOrders)},
        {"parser_fuzzer", parserSeeds()},
        {"sps_fuzzer", parameterSetSeeds()},
        {"structure_fuzzer", withOrders(playerOrders)},
    };
    for (const auto& [target, seeds] : targets) {
        for (const Seed& seed : seeds)
            act(folder / target / seed.name, seed.bytes);
    }
}

}  // namespace

}  // namespace avitest

int main(int argc, char** argv) {
    const bool isCheck = argc == 3 && std::string(argv[1]) == "--check";
    if (argc != 2 && !isCheck) {
        std::fprintf(stderr, "usage: fuzz_make_corpus [--check] FOLDER\n");
        return 2;
    }
    try {
        avitest::forEachSeed(argv[argc - 1], isCheck ? avitest::check : avitest::write);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz_make_corpus: %s\n", error.what());
        return 1;
    }
    return 0;
}
