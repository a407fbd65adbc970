#pragma once

#include <QObject>
#include <QStringList>
#include <span>
#include <vector>

/// The data that a chart shows: rowCount() x columnCount() numbers, their labels, the limits of the
/// value axis and the backdrop. Rows and columns count from 1; the last two columns are the alarm
/// limits, those before them sensors. It knows no widget: every rule about diagrams works on a
/// grid, a ChartView draws it.
///
/// A current row and column select the cell or the column that data(), setData(), columnLabel() and
/// setColumnLabel() mean. Selecting outside the grid throws RuntimeError 9, and so does data() once
/// the current row was dropped.
class ChartGrid : public QObject
{
    Q_OBJECT
public:
    enum class Backdrop { Transparent, White };

    /// `tag` names the diagram; rows are labelled "R1", "R2", ...; all data start at 0. The labels
    /// are those of the sensors, then the two of the alarm limits.
    ChartGrid(const QString &tag, const QStringList &columnLabels, int rowCount,
              QObject *parent = nullptr);

    QString tag() const { return m_tag; }
    int columnCount() const { return static_cast<int>(m_columns.size()); }
    int sensorColumns() const { return columnCount() - kAlarmColumns; }
    int lowerAlarmColumn() const { return columnCount() - 1; }
    int upperAlarmColumn() const { return columnCount(); }
    bool isAlarmColumn(int column) const { return column > sensorColumns(); }
    int rowCount() const { return m_rowCount; }
    /// Adds rows of zeros at the end or drops rows there. Throws RuntimeError 5 below 0.
    void setRowCount(int rowCount);
    static QString rowLabel(int row) { return QStringLiteral("R%1").arg(row); }

    int row() const { return m_row; }
    void setRow(int row);
    int column() const { return m_column; }
    void setColumn(int column);

    double data() const;
    void setData(double value);
    QString columnLabel() const;
    void setColumnLabel(const QString &label);

    QString columnLabelOf(int column) const;
    /// All values of one column, row 1 first. Valid until the row count changes.
    std::span<const double> columnData(int column) const;
    void fillColumn(int column, double value);
    /// Replaces a whole column; `values` has rowCount() elements, otherwise RuntimeError 9.
    void setColumnData(int column, std::vector<double> values);

    double valueAxisMaximum() const { return m_maximum; }
    double valueAxisMinimum() const { return m_minimum; }
    void setValueAxisMaximum(double maximum);
    void setValueAxisMinimum(double minimum);
    /// Asks for all rows between the limits: a zoomed chart shows the whole range again.
    void resetView() { emit viewReset(); }

    bool rowLabelsShown() const { return m_rowLabelsShown; }
    void setRowLabelsShown(bool shown);
    Backdrop backdrop() const { return m_backdrop; }
    void setBackdrop(Backdrop backdrop);

signals:
    /// Data of one column changed; `row` is 0 when all of the column may have.
    void dataChanged(int column, int row);
    /// Labels, axis limits, row count or backdrop changed.
    void layoutChanged();
    void viewReset();

private:
    struct Column {
        QString label;
        std::vector<double> values;
    };

    static constexpr int kAlarmColumns = 2;

    std::size_t indexOf(int column) const;
    const Column &columnAt(int column) const { return m_columns[indexOf(column)]; }
    Column &columnAt(int column) { return m_columns[indexOf(column)]; }
    /// Index of the current row in its column.
    std::size_t rowIndex() const;

    QString m_tag;
    std::vector<Column> m_columns;
    int m_rowCount;
    int m_row = 1;
    int m_column = 1;
    double m_maximum = 100;
    double m_minimum = 0;
    bool m_rowLabelsShown = false;
    Backdrop m_backdrop = Backdrop::White;
};
