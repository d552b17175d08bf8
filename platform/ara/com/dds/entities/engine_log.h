#ifndef ARA_COM_DDS_ENTITIES_ENGINE_LOG_H
#define ARA_COM_DDS_ENTITIES_ENGINE_LOG_H

namespace ara::com::dds {

/// From now on the engine's warnings and errors go to the log instead of standard error, at most ten a second: what
/// others send can cause many. May be repeated.
void log_what_the_engine_tells();

}  // namespace ara::com::dds

#endif
