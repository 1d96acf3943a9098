#include "core/TripleDouble.h"

namespace rkBase {

bool TripleDouble::operator==(const TripleDouble& o) const
{
    return m_v[0] == o.m_v[0] && m_v[1] == o.m_v[1] && m_v[2] == o.m_v[2];
}

} // namespace rkBase
