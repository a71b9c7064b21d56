// SPDX-License-Identifier: MIT
#include "benchmarks/objects_peer.h"

#include "veltra/infrastructure/singleton.h"

#include <vector>

namespace {

class Mixer : public veltra::QKSingleton {
public:
    static veltra::SlotClass<> s_class;
    veltra::Class& classObject() const noexcept override { return s_class; }
};
constinit veltra::SlotClass<> Mixer::s_class("BenchmarkMixer", &veltra::QKSingleton::s_class,
                                             veltra::makeObject<Mixer>);

}  // namespace

void* sharedMixer() {
    return Mixer::s_class.sharedInstance();
}

void* staticMixer() {
    static std::vector<int> mixer(1);  // needs a guard, as everything with a constructor
    return &mixer;
}
