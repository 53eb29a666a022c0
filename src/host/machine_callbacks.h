#pragma once

/// Sets the callbacks of machine_host: from now on the shell gets what the machine tells and asks.
void connect_machine();
