#include "trends/drawnsegments.h"

#include <QTest>

#include <algorithm>

using namespace telvane;

namespace {

std::vector<TrendPoint> ramp(int count, qint64 stepMs)
{
    std::vector<TrendPoint> points;
    for (int i = 0; i < count; ++i)
        points.push_back({i * stepMs, static_cast<float>(i % 7)});
    return points;
}

qsizetype total(const std::vector<std::vector<TrendPoint>> &segments)
{
    qsizetype count = 0;
    for (const auto &segment : segments)
        count += segment.size();
    return count;
}

} // namespace

class TestDrawnSegments : public QObject
{
    Q_OBJECT

private slots:
    void gapsSplitTheLine()
    {
        const std::vector<TrendPoint> points = {{0, 1}, {10, 2}, {20, TrendGap}, {30, TrendGap}, {40, 5}, {50, 6}};
        const auto segments = drawnSegments(points, 0, 50, 100);
        QCOMPARE(segments.size(), 2u);
        QCOMPARE(segments[0].size(), 2u);
        QCOMPARE(segments[1].front().ms, 40);
        QCOMPARE(segments[1].back().value, 6.0f);
    }

    // A visible range that starts and ends between samples still draws the line to the
    // edges, from the samples just outside it.
    void keepsTheNeighboursOutsideTheRange()
    {
        const auto points = ramp(10, 100);
        const auto segments = drawnSegments(points, 250, 550, 100);
        QCOMPARE(segments.size(), 1u);
        QCOMPARE(segments[0].front().ms, 200);
        QCOMPARE(segments[0].back().ms, 600);
        QCOMPARE(segments[0].size(), 5u);
    }

    // A day at five-second rounds on a chart 800 pixels wide: at most four samples per
    // column are drawn, in time order, and every peak and trough is still there.
    void reductionKeepsExtremes()
    {
        auto points = ramp(17280, 5000);
        points[5000].value = 250;
        points[12000].value = -40;
        const qint64 to = points.back().ms;
        const auto segments = drawnSegments(points, 0, to, 800);
        QCOMPARE(segments.size(), 1u);
        const auto &drawn = segments[0];
        QVERIFY(drawn.size() <= 4 * 801);
        QVERIFY(std::is_sorted(drawn.begin(), drawn.end(),
                               [](const TrendPoint &a, const TrendPoint &b) { return a.ms < b.ms; }));
        const auto [low, high] = std::minmax_element(drawn.begin(), drawn.end(),
                                                     [](const TrendPoint &a, const TrendPoint &b) { return a.value < b.value; });
        QCOMPARE(high->value, 250.0f);
        QCOMPARE(high->ms, points[5000].ms);
        QCOMPARE(low->value, -40.0f);
        QCOMPARE(drawn.front().ms, 0);
        QCOMPARE(drawn.back().ms, to);
    }

    // Reduction must not bridge a gap either.
    void reductionStillBreaksAtGaps()
    {
        auto points = ramp(10000, 1000);
        for (int i = 4000; i < 4010; ++i)
            points[i].value = TrendGap;
        const auto segments = drawnSegments(points, 0, points.back().ms, 200);
        QCOMPARE(segments.size(), 2u);
        QVERIFY(segments[0].back().ms < 4000 * 1000);
        QVERIFY(segments[1].front().ms >= 4010 * 1000);
        QVERIFY(total(segments) <= 4 * 202);
    }
};

QTEST_GUILESS_MAIN(TestDrawnSegments)
#include "tst_drawnsegments.moc"
