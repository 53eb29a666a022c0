#pragma once

/// Makes the shell the machine's host: what the machine tells and asks comes here from now on.
void connect_machine();
