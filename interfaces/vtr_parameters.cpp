#include "vtr_parameters.h"

void RegisterVTParameters()
{
    qRegisterMetaType<VTParameters>("VTParameters");
}
