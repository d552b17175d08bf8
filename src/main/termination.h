#ifndef MAIN_TERMINATION_H
#define MAIN_TERMINATION_H

#include "main/state_manager_holder.h"

/// The process's State_manager; empty until `main` has built it, emptied when the process exits.
extern State_manager_holder g_state_manager;

/// Asks the State_manager to stop on SIGABRT, SIGINT and SIGTERM; does nothing while there is none.
void handle_termination_signal(int signal_number);

/// Installs the handler for the three signals with `install` (the C library's `signal`). A failure is logged, and the
/// others are installed all the same.
using Install_handler = void (*(*)(int, void (*)(int)))(int);
void register_termination_handlers(Install_handler install);

#endif
