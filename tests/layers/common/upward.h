#pragma once

// Breaks the layers on purpose: the check of the includes must name it.
#include "mainwindow/vtr_pagestate.h"
