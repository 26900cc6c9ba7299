#include "tests/support/RandomRows.h"

#include "engine/Pendrix3D.h"

#include "tests/support/FloatBits.h"

QVector<float> randomRow(std::mt19937 &random, int number)
{
    QVector<float> row(Pendrix3D::rowLength);
    for (float &value : row)
        value = anyFloat(random);
    if (number % 2)
        row[5] = static_cast<float>(number / 2 % (Pendrix3D::colorModeCount + 2) - 1);
    return row;
}

void setRandomSettings(std::mt19937 &random, int number)
{
    setDefaultSettings();
    if (number % 3 == 0)
        pdx3.radiusScale = anyFloat(random);
    if (number % 100 == 0)
        return;
    if (number % 4 == 0)
        pdx3.total = anyFloat(random);
    pdx3.step = pdx3.total / (static_cast<float>(random() % 601) + 0.5F);
}

void setDefaultSettings()
{
    pdx3.total = 1.0F;
    pdx3.step = 6e-5F;
    pdx3.radiusScale = 1.0F;
}
