// Advice on the power that a program draws, from what compilers note of it in the output's build
// attributes.
#pragma once

#include <string>

class POWER_ADVICE {
  public:
    virtual ~POWER_ADVICE() = default;

    /// Gives the advice as remarks; nothing unless --advice:power asks for it.
    void check_power_advice();

  protected:
    /// What a target checks besides.
    virtual void target_check_power_advice() {}
    /// 1: instructions that change the power mode could be used, and none is; 2: some are.
    virtual unsigned lpm_instruction_info() { return 0; }
    /// Three thirds of equal length, a character for each port: its letter; "1" if it exists; "1"
    /// if it is initialized.
    virtual std::string ports_initialization_info() { return {}; }

  private:
    void check_ports();
};
