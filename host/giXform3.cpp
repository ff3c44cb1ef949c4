#include "host/giXform3.h"

giXform3::giXform3() : m_{1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0} {}

giXform3::giXform3(const double (&m)[size])
{
    for (int i = 0; i < size; i++)
        m_[i] = m[i];
}

double giXform3::operator()(int r, int c) const
{
    if (r < 0 || r >= rows || c < 0 || c >= columns)
        return 0.0;
    return m_[r * columns + c];
}

void giXform3::set(int r, int c, double v)
{
    if (r < 0 || r >= rows || c < 0 || c >= columns)
        return;
    m_[r * columns + c] = v;
}

void giXform3::premultiply_translation(const giVector3& t)
{
    m_[3] = m_[3] + t.x();
    m_[7] = m_[7] + t.y();
    m_[11] = m_[11] + t.z();
}

void giXform3::premultiply(const giXform3& a)
{
    double r[size];
    for (int i = 0; i < rows; i++) {
        for (int j = 0; j < columns; j++) {
            double v = a(i, 0) * (*this)(0, j) + a(i, 1) * (*this)(1, j) + a(i, 2) * (*this)(2, j);
            if (j == 3)
                v = v + a(i, 3);
            r[i * columns + j] = v;
        }
    }
    for (int i = 0; i < size; i++)
        m_[i] = r[i];
}

giPoint3 giXform3::apply(const giPoint3& p) const
{
    double v[rows];
    for (int i = 0; i < rows; i++)
        v[i] = m_[i * columns] * p.x() + m_[i * columns + 1] * p.y() + m_[i * columns + 2] * p.z() +
               m_[i * columns + 3];
    return giPoint3(v[0], v[1], v[2]);
}

bool operator==(const giXform3& a, const giXform3& b)
{
    for (int i = 0; i < giXform3::size; i++)
        if (a.m_[i] != b.m_[i])
            return false;
    return true;
}
