// What the environment says about a launcher of several processes.
#pragma once

// How many processes were started together; 0 when no launcher started this one.
int LaunchedProcesses();
