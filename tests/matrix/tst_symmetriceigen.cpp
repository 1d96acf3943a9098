// The 3x3 symmetric eigen solver against matrices whose spectra are known by construction:
// R diag(l) R^T for a known rotation R, so the values are l and the vectors the columns of R.
#include "matrix/SymmetricEigen.h"

#include <QtTest>

#include <cmath>
#include <limits>

using rkBase::TripleDouble;

namespace {

struct Known {
    double l[3];
    double axis[3]; // rotation axis (normalised here) and angle
    double angle;
};

void rotation(const double axis[3], double angle, double r[3][3])
{
    const double n = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    const double x = axis[0] / n, y = axis[1] / n, z = axis[2] / n;
    const double c = std::cos(angle), s = std::sin(angle), t = 1 - c;
    const double m[3][3] = {{t * x * x + c, t * x * y - s * z, t * x * z + s * y},
                            {t * x * y + s * z, t * y * y + c, t * y * z - s * x},
                            {t * x * z - s * y, t * y * z + s * x, t * z * z + c}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r[i][j] = m[i][j];
}

} // namespace

class TestSymmetricEigen : public QObject {
    Q_OBJECT

private slots:
    void knownSpectra_data()
    {
        QTest::addColumn<QVector<double>>("spec"); // l0 l1 l2 ax ay az angle
        QTest::newRow("diagonal") << QVector<double>{3, 1, 2, 0, 0, 1, 0};
        QTest::newRow("rotated about z") << QVector<double>{5, -2, 0.5, 0, 0, 1, 0.7};
        QTest::newRow("oblique rotation") << QVector<double>{10, 4, 1, 1, 2, 3, 1.1};
        QTest::newRow("two equal values") << QVector<double>{2, 2, 7, 1, -1, 0.5, 0.4};
        QTest::newRow("all equal") << QVector<double>{4, 4, 4, 1, 1, 1, 0.9};
        QTest::newRow("orientation-tensor like") << QVector<double>{0.9, 0.07, 0.03, 0.2, 1, -0.4, 2.0};
        QTest::newRow("large and small") << QVector<double>{1e6, 1e-3, -1e3, 3, -1, 2, 0.3};
    }
    void knownSpectra()
    {
        QFETCH(QVector<double>, spec);
        double r[3][3];
        const double axis[3] = {spec[3], spec[4], spec[5]};
        rotation(axis, spec[6], r);
        double m[3][3];
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                m[i][j] = 0;
                for (int k = 0; k < 3; ++k)
                    m[i][j] += r[i][k] * spec[k] * r[j][k];
            }
        for (bool ascending : {true, false}) {
            TripleDouble values, vectors[3];
            QVERIFY(rkBase::symmetricEigen3(m, values, vectors, ascending));
            QVector<double> expected{spec[0], spec[1], spec[2]};
            std::sort(expected.begin(), expected.end());
            if (!ascending)
                std::reverse(expected.begin(), expected.end());
            const double scale = std::max({std::fabs(spec[0]), std::fabs(spec[1]), std::fabs(spec[2])});
            for (int i = 0; i < 3; ++i) {
                QVERIFY2(std::fabs(values[i] - expected[i]) <= 1e-12 * scale, qPrintable(QString::number(values[i])));
                // A v = l v and |v| = 1, whatever the basis chosen for repeated values.
                const TripleDouble& v = vectors[i];
                const double norm = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
                QVERIFY(std::fabs(norm - 1) < 1e-12);
                for (int row = 0; row < 3; ++row) {
                    const double av = m[row][0] * v[0] + m[row][1] * v[1] + m[row][2] * v[2];
                    QVERIFY(std::fabs(av - values[i] * v[row]) <= 1e-10 * scale);
                }
            }
        }
    }

    void refusesNonFinite()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double m[3][3] = {{1, 0, 0}, {0, nan, 0}, {0, 0, 1}};
        TripleDouble values, vectors[3];
        QVERIFY(!rkBase::symmetricEigen3(m, values, vectors));
    }
};

QTEST_GUILESS_MAIN(TestSymmetricEigen)
#include "tst_symmetriceigen.moc"
