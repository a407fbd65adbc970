#include "chart/chart_grid.h"
#include "platform/runtime_error.h"

#include <algorithm>

ChartGrid::ChartGrid(const QString &tag, const QStringList &columnLabels, int rowCount,
                     QObject *parent)
    : QObject(parent), m_tag(tag), m_rowCount(rowCount)
{
    for (const QString &label : columnLabels)
        m_columns.push_back({label, std::vector<double>(static_cast<std::size_t>(rowCount), 0.0)});
}

std::size_t ChartGrid::indexOf(int column) const
{
    if (column < 1 || column > columnCount())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    return static_cast<std::size_t>(column - 1);
}

void ChartGrid::setRowCount(int rowCount)
{
    if (rowCount < 0)
        throw RuntimeError(RuntimeError::InvalidProcedureCall);
    for (Column &column : m_columns)
        column.values.resize(static_cast<std::size_t>(rowCount), 0.0);
    m_rowCount = rowCount;
    emit layoutChanged();
}

void ChartGrid::setRow(int row)
{
    if (row < 1 || row > m_rowCount)
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    m_row = row;
}

void ChartGrid::setColumn(int column)
{
    indexOf(column);
    m_column = column;
}

std::size_t ChartGrid::rowIndex() const
{
    if (m_row > m_rowCount) // rows were dropped
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    return static_cast<std::size_t>(m_row - 1);
}

double ChartGrid::data() const
{
    return columnAt(m_column).values[rowIndex()];
}

void ChartGrid::setData(double value)
{
    columnAt(m_column).values[rowIndex()] = value;
    emit dataChanged(m_column, m_row);
}

QString ChartGrid::columnLabel() const
{
    return columnAt(m_column).label;
}

void ChartGrid::setColumnLabel(const QString &label)
{
    columnAt(m_column).label = label;
    emit layoutChanged();
}

QString ChartGrid::columnLabelOf(int column) const
{
    return columnAt(column).label;
}

std::span<const double> ChartGrid::columnData(int column) const
{
    return columnAt(column).values;
}

void ChartGrid::fillColumn(int column, double value)
{
    std::vector<double> &values = columnAt(column).values;
    std::fill(values.begin(), values.end(), value);
    emit dataChanged(column, 0);
}

void ChartGrid::setColumnData(int column, std::vector<double> values)
{
    Column &target = columnAt(column);
    if (values.size() != target.values.size())
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    target.values = std::move(values);
    emit dataChanged(column, 0);
}

void ChartGrid::setValueAxisMaximum(double maximum)
{
    m_maximum = maximum;
    emit layoutChanged();
}

void ChartGrid::setValueAxisMinimum(double minimum)
{
    m_minimum = minimum;
    emit layoutChanged();
}

void ChartGrid::setRowLabelsShown(bool shown)
{
    m_rowLabelsShown = shown;
    emit layoutChanged();
}

void ChartGrid::setBackdrop(Backdrop backdrop)
{
    m_backdrop = backdrop;
    emit layoutChanged();
}
