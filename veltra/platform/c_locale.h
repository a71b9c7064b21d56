// SPDX-License-Identifier: MIT
// Keeps the calling thread in the "C" locale while the guard lives: numbers get a decimal point and
// system errors their English names, whatever locale the host has set.
#pragma once

namespace veltra {

class CLocale {
public:
    CLocale() noexcept;
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;
    ~CLocale();

private:
    void* m_before = nullptr;  // the thread's locale, in the system's form
};

}  // namespace veltra
