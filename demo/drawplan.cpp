// Draws the floor plans of the demo plant, so the demo ships no picture we did not make.
//   telvane-drawplan <output.jpg>            the flat of the civil setup (Pianta.jpg)
//   telvane-drawplan <output.jpg> --reparto  the workshop hall of the industrial setup
// Needs a Qt platform for fonts: run with QT_QPA_PLATFORM=offscreen on a headless machine.
// The marker positions in the demo settings files are read off these pictures (1 pixel =
// 15 twips), so moving a wall here means moving the markers there.

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTextStream>

#include <cmath>
#include <functional>

namespace {

constexpr int kWidth = 1200;
constexpr int kHeight = 800;
constexpr double kOuterWall = 14.0;
constexpr double kInnerWall = 8.0;
constexpr double kPixelsPerMetre = 70.0;

const QColor kPaper(0xfb, 0xfa, 0xf6);
const QColor kFloor(0xf3, 0xee, 0xe3);
const QColor kWallColour(0x3a, 0x3a, 0x3a);
const QColor kLineColour(0x55, 0x55, 0x55);
const QColor kFurniture(0x9a, 0x93, 0x88);
const QColor kLabel(0x2b, 0x3a, 0x55);

enum class OpeningKind { Door, Passage, Window, Gate };

struct Wall
{
    QLineF axis;
    double thickness;
};

// An opening lies on a wall's axis. A door's leaf turns on the hinge end towards
// `swing` (+1: towards growing x or y, -1: the other way).
struct Opening
{
    QLineF span;
    OpeningKind kind;
    int swing = 1;
    bool hingeAtEnd = false;
};

struct Room
{
    QString name;
    QRectF rect;       // between wall axes, used for the floor area
    QPointF labelAt;   // centre of the name
    bool tiled = false;
    bool showArea = true;
};

struct Plan
{
    QString title;
    QRectF outline;
    QList<Wall> walls;
    QList<Opening> openings;
    QList<Room> rooms;
    std::function<void(QPainter &)> furniture;
};

bool isHorizontal(const QLineF &line)
{
    return std::abs(line.dy()) < std::abs(line.dx());
}

// The wall's footprint around its axis, square ends so corners close.
QRectF wallRect(const QLineF &axis, double thickness)
{
    const double half = thickness / 2.0;
    const double x1 = std::min(axis.x1(), axis.x2()), x2 = std::max(axis.x1(), axis.x2());
    const double y1 = std::min(axis.y1(), axis.y2()), y2 = std::max(axis.y1(), axis.y2());
    return QRectF(QPointF(x1 - half, y1 - half), QPointF(x2 + half, y2 + half));
}

// The cut an opening makes through any wall it lies on.
QRectF openingRect(const QLineF &span)
{
    const double half = kOuterWall / 2.0 + 1.0;
    if (isHorizontal(span)) {
        return QRectF(QPointF(std::min(span.x1(), span.x2()), span.y1() - half),
                      QPointF(std::max(span.x1(), span.x2()), span.y1() + half));
    }
    return QRectF(QPointF(span.x1() - half, std::min(span.y1(), span.y2())),
                  QPointF(span.x1() + half, std::max(span.y1(), span.y2())));
}

// Qt angles run counter-clockwise on screen, with y growing downwards.
double screenAngle(const QPointF &from, const QPointF &to)
{
    return std::atan2(-(to.y() - from.y()), to.x() - from.x()) * 180.0 / M_PI;
}

void drawDoor(QPainter &p, const Opening &o)
{
    const QPointF hinge = o.hingeAtEnd ? o.span.p2() : o.span.p1();
    const QPointF jamb = o.hingeAtEnd ? o.span.p1() : o.span.p2();
    const double width = o.span.length();
    const QPointF normal = isHorizontal(o.span) ? QPointF(0, o.swing) : QPointF(o.swing, 0);
    const QPointF leafEnd = hinge + normal * width;

    p.setPen(QPen(kLineColour, 2.0));
    p.drawLine(hinge, leafEnd);
    const double start = screenAngle(hinge, jamb);
    double sweep = screenAngle(hinge, leafEnd) - start;
    if (sweep > 180.0)
        sweep -= 360.0;
    if (sweep < -180.0)
        sweep += 360.0;
    p.setPen(QPen(kLineColour, 1.0, Qt::DashLine));
    p.drawArc(QRectF(hinge.x() - width, hinge.y() - width, 2 * width, 2 * width),
              qRound(start * 16), qRound(sweep * 16));
}

void drawWindow(QPainter &p, const Opening &o)
{
    const QRectF cut = openingRect(o.span);
    const QRectF glass = isHorizontal(o.span) ? cut.adjusted(0, 1.5, 0, -1.5) : cut.adjusted(1.5, 0, -1.5, 0);
    p.fillRect(glass, Qt::white);
    p.setPen(QPen(kLineColour, 1.2));
    p.drawRect(glass);
    p.drawLine(o.span);
}

void drawGate(QPainter &p, const Opening &o)
{
    p.setPen(QPen(kLineColour, 1.5, Qt::DashLine));
    const QPointF inward = isHorizontal(o.span) ? QPointF(0, -o.swing * 12.0) : QPointF(-o.swing * 12.0, 0);
    p.drawLine(o.span.translated(inward));
    p.drawLine(o.span.translated(inward * 2));
}

void drawWallsAndOpenings(QPainter &p, const Plan &plan)
{
    p.setPen(Qt::NoPen);
    for (const Wall &w : plan.walls)
        p.fillRect(wallRect(w.axis, w.thickness), kWallColour);
    for (const Opening &o : plan.openings) {
        p.fillRect(openingRect(o.span), kFloor);
        switch (o.kind) {
        case OpeningKind::Door:
            drawDoor(p, o);
            break;
        case OpeningKind::Window:
            drawWindow(p, o);
            break;
        case OpeningKind::Gate:
            drawGate(p, o);
            break;
        case OpeningKind::Passage:
            break;
        }
    }
}

QString areaText(const QRectF &r)
{
    const double area = (r.width() / kPixelsPerMetre) * (r.height() / kPixelsPerMetre);
    return QString::number(area, 'f', 1).replace(QLatin1Char('.'), QLatin1Char(',')) + QString::fromUtf8(" m²");
}

void drawRoomLabels(QPainter &p, const Plan &plan)
{
    QFont nameFont(QStringLiteral("DejaVu Sans"), 15, QFont::Bold);
    QFont areaFont(QStringLiteral("DejaVu Sans"), 10);
    for (const Room &room : plan.rooms) {
        p.setPen(kLabel);
        p.setFont(nameFont);
        const QRectF nameBox(room.labelAt.x() - 200, room.labelAt.y() - 14, 400, 28);
        p.drawText(nameBox, Qt::AlignCenter, room.name.toUpper());
        if (room.showArea) {
            p.setFont(areaFont);
            p.setPen(kLineColour);
            p.drawText(nameBox.translated(0, 22), Qt::AlignCenter, areaText(room.rect));
        }
    }
}

void drawFloors(QPainter &p, const Plan &plan)
{
    p.fillRect(plan.outline, kFloor);
    for (const Room &room : plan.rooms) {
        if (room.tiled)
            p.fillRect(room.rect, QBrush(QColor(0xd8, 0xdd, 0xe2), Qt::CrossPattern));
    }
}

void drawScaleBar(QPainter &p, QPointF origin, int metres)
{
    p.setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    for (int m = 0; m < metres; ++m) {
        const QRectF step(origin.x() + m * kPixelsPerMetre, origin.y(), kPixelsPerMetre, 6);
        p.fillRect(step, m % 2 == 0 ? kWallColour : Qt::white);
    }
    p.setPen(QPen(kWallColour, 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(origin, QSizeF(metres * kPixelsPerMetre, 6)));
    for (int m = 0; m <= metres; ++m) {
        p.drawText(QRectF(origin.x() + m * kPixelsPerMetre - 20, origin.y() + 8, 40, 14), Qt::AlignCenter,
                   m == metres ? QStringLiteral("%1 m").arg(m) : QString::number(m));
    }
}

void drawNorthArrow(QPainter &p, QPointF centre)
{
    QPainterPath arrow;
    arrow.moveTo(centre + QPointF(0, -18));
    arrow.lineTo(centre + QPointF(9, 12));
    arrow.lineTo(centre + QPointF(0, 6));
    arrow.lineTo(centre + QPointF(-9, 12));
    arrow.closeSubpath();
    p.setPen(QPen(kWallColour, 1.2));
    p.setBrush(kWallColour);
    p.drawPath(arrow);
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(centre, 22, 22);
    p.setFont(QFont(QStringLiteral("DejaVu Sans"), 10, QFont::Bold));
    p.drawText(QRectF(centre.x() - 10, centre.y() - 42, 20, 16), Qt::AlignCenter, QStringLiteral("N"));
}

void drawTitle(QPainter &p, const QString &title)
{
    p.setPen(kLabel);
    p.setFont(QFont(QStringLiteral("DejaVu Sans"), 14, QFont::Bold));
    p.drawText(QRectF(60, 18, 800, 30), Qt::AlignLeft | Qt::AlignVCenter, title);
}

// Furniture outlines, in the thin grey of an architect's plan.

void furniturePen(QPainter &p)
{
    p.setPen(QPen(kFurniture, 1.4));
    p.setBrush(Qt::NoBrush);
}

void bed(QPainter &p, const QRectF &r, bool headOnLeft)
{
    furniturePen(p);
    p.setBrush(Qt::white);
    p.drawRect(r);
    const double pillowDepth = 22;
    const double x = headOnLeft ? r.left() + 6 : r.right() - 6 - pillowDepth;
    const double gap = 6;
    const double pillowHeight = (r.height() - 3 * gap) / 2.0;
    p.drawRoundedRect(QRectF(x, r.top() + gap, pillowDepth, pillowHeight), 4, 4);
    p.drawRoundedRect(QRectF(x, r.top() + 2 * gap + pillowHeight, pillowDepth, pillowHeight), 4, 4);
    const double foldX = headOnLeft ? r.left() + r.width() * 0.45 : r.right() - r.width() * 0.45;
    p.drawLine(QPointF(foldX, r.top()), QPointF(foldX, r.bottom()));
}

void wardrobe(QPainter &p, const QRectF &r)
{
    furniturePen(p);
    p.drawRect(r);
    p.drawLine(r.topLeft(), r.bottomRight());
    p.drawLine(r.bottomLeft(), r.topRight());
}

void tableWithChairs(QPainter &p, QPointF centre, double radius, int chairs)
{
    furniturePen(p);
    for (int i = 0; i < chairs; ++i) {
        const double a = (2 * M_PI * i) / chairs + M_PI / 4;
        const QPointF c = centre + QPointF(std::cos(a), std::sin(a)) * (radius + 14);
        p.drawRect(QRectF(c.x() - 11, c.y() - 11, 22, 22));
    }
    p.setBrush(Qt::white);
    p.drawEllipse(centre, radius, radius);
}

void sofa(QPainter &p, const QRectF &r)
{
    furniturePen(p);
    p.setBrush(Qt::white);
    p.drawRoundedRect(r, 6, 6);
    p.drawRoundedRect(r.adjusted(r.width() * 0.45, 6, -6, -6), 4, 4);
}

void sink(QPainter &p, const QRectF &r)
{
    furniturePen(p);
    p.drawRect(r);
    p.drawEllipse(r.adjusted(5, 5, -5, -5));
}

void plainRect(QPainter &p, const QRectF &r)
{
    furniturePen(p);
    p.drawRect(r);
}

void flatFurniture(QPainter &p)
{
    // Cucina: worktop along two walls, hob and sink, round table.
    plainRect(p, QRectF(67, 77, 300, 48));
    plainRect(p, QRectF(67, 125, 48, 150));
    sink(p, QRectF(190, 82, 60, 38));
    furniturePen(p);
    for (int i = 0; i < 4; ++i)
        p.drawEllipse(QPointF(300 + (i % 2) * 24, 92 + (i / 2) * 20), 8, 8);
    tableWithChairs(p, QPointF(230, 335), 34, 4);

    // Soggiorno: sofa facing the television, low table, rug.
    sofa(p, QRectF(412, 110, 56, 190));
    plainRect(p, QRectF(500, 160, 60, 90));
    plainRect(p, QRectF(795, 120, 18, 130));
    furniturePen(p);
    p.setPen(QPen(kFurniture, 1.0, Qt::DotLine));
    p.drawRect(QRectF(485, 130, 110, 150));

    // Studio: desk under the window, chair, bookcase.
    plainRect(p, QRectF(900, 77, 170, 52));
    furniturePen(p);
    p.drawEllipse(QPointF(985, 152), 16, 16);
    wardrobe(p, QRectF(827, 100, 26, 160));

    // Camere: beds against the outer walls, wardrobes along the corridor walls.
    bed(p, QRectF(67, 575, 140, 112), true);
    wardrobe(p, QRectF(90, 427, 180, 36));
    bed(p, QRectF(993, 575, 140, 112), false);
    wardrobe(p, QRectF(930, 427, 180, 36));

    // Bagno: bath along the outer wall, basin, WC.
    furniturePen(p);
    p.setBrush(Qt::white);
    p.drawRect(QRectF(440, 672, 133, 51));
    p.drawRoundedRect(QRectF(447, 679, 119, 37), 14, 14);
    furniturePen(p);
    p.drawRect(QRectF(387, 530, 16, 36));
    p.drawEllipse(QRectF(403, 533, 36, 30));
    sink(p, QRectF(387, 600, 40, 50));

    // Ingresso: a doormat inside the front door.
    p.setPen(QPen(kFurniture, 1.0, Qt::DotLine));
    p.drawRect(QRectF(665, 640, 70, 30));
}

Plan flatPlan()
{
    Plan plan;
    plan.title = QStringLiteral("Abitazione dimostrativa - Pianta piano terra");
    plan.outline = QRectF(QPointF(60, 70), QPointF(1140, 730));
    plan.walls = {
        {QLineF(60, 70, 1140, 70), kOuterWall},   {QLineF(1140, 70, 1140, 730), kOuterWall},
        {QLineF(60, 730, 1140, 730), kOuterWall}, {QLineF(60, 70, 60, 730), kOuterWall},
        {QLineF(60, 420, 1140, 420), kInnerWall}, {QLineF(400, 70, 400, 420), kInnerWall},
        {QLineF(820, 70, 820, 730), kInnerWall},  {QLineF(380, 420, 380, 730), kInnerWall},
        {QLineF(580, 420, 580, 730), kInnerWall}, {QLineF(380, 520, 580, 520), kInnerWall},
    };
    plan.openings = {
        // Doors.
        {QLineF(660, 730, 740, 730), OpeningKind::Door, -1, false},  // ingresso, front door
        {QLineF(380, 435, 380, 510), OpeningKind::Door, -1, false},  // camera 1
        {QLineF(500, 520, 575, 520), OpeningKind::Door, +1, true},   // bagno
        {QLineF(820, 620, 820, 700), OpeningKind::Door, +1, true},   // camera 2
        {QLineF(400, 300, 400, 380), OpeningKind::Door, -1, true},   // cucina
        {QLineF(820, 300, 820, 380), OpeningKind::Door, +1, true},   // studio
        {QLineF(640, 420, 760, 420), OpeningKind::Passage},          // ingresso - soggiorno
        {QLineF(580, 440, 580, 510), OpeningKind::Passage},          // ingresso - disimpegno
        // Windows.
        {QLineF(160, 70, 300, 70), OpeningKind::Window},
        {QLineF(500, 70, 720, 70), OpeningKind::Window},
        {QLineF(910, 70, 1050, 70), OpeningKind::Window},
        {QLineF(60, 170, 60, 290), OpeningKind::Window},
        {QLineF(60, 450, 60, 540), OpeningKind::Window},
        {QLineF(1140, 190, 1140, 300), OpeningKind::Window},
        {QLineF(1140, 450, 1140, 540), OpeningKind::Window},
        {QLineF(150, 730, 290, 730), OpeningKind::Window},
        {QLineF(460, 730, 540, 730), OpeningKind::Window},
        {QLineF(910, 730, 1050, 730), OpeningKind::Window},
    };
    plan.rooms = {
        {QStringLiteral("Soggiorno"), QRectF(QPointF(400, 70), QPointF(820, 420)), QPointF(680, 160)},
        {QStringLiteral("Cucina"), QRectF(QPointF(60, 70), QPointF(400, 420)), QPointF(240, 175), true},
        {QStringLiteral("Camera 1"), QRectF(QPointF(60, 420), QPointF(380, 730)), QPointF(230, 510)},
        {QStringLiteral("Camera 2"), QRectF(QPointF(820, 420), QPointF(1140, 730)), QPointF(915, 500)},
        {QStringLiteral("Bagno"), QRectF(QPointF(380, 520), QPointF(580, 730)), QPointF(505, 615), true},
        {QStringLiteral("Studio"), QRectF(QPointF(820, 70), QPointF(1140, 420)), QPointF(1000, 225)},
        {QStringLiteral("Ingresso"), QRectF(QPointF(580, 420), QPointF(820, 730)), QPointF(700, 480)},
        {QStringLiteral("Disimp."), QRectF(QPointF(380, 420), QPointF(580, 520)), QPointF(480, 470), false, false},
    };
    plan.furniture = flatFurniture;
    return plan;
}

void oven(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(kWallColour, 1.6));
    p.setBrush(QBrush(QColor(0xc9, 0xb8, 0xa6), Qt::BDiagPattern));
    p.drawRect(r);
    p.setBrush(Qt::white);
    p.drawRect(r.adjusted(18, 18, -18, -18));
    p.setBrush(Qt::NoBrush);
    for (int i = 0; i < 3; ++i)
        p.drawEllipse(QPointF(r.left() + r.width() * (i + 1) / 4.0, r.bottom() - 9), 5, 5);
}

void tank(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(kWallColour, 1.6));
    p.setBrush(QColor(0xdc, 0xe8, 0xf2));
    p.drawRect(r);
    p.setPen(QPen(QColor(0x6b, 0x8c, 0xae), 1.2));
    for (double y = r.top() + 24; y < r.bottom() - 10; y += 22) {
        QPainterPath wave;
        wave.moveTo(r.left() + 12, y);
        for (double x = r.left() + 12; x < r.right() - 24; x += 24)
            wave.quadTo(x + 6, y - 6, x + 12, y), wave.quadTo(x + 18, y + 6, x + 24, y);
        p.drawPath(wave);
    }
}

void conveyor(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(kFurniture, 1.4));
    p.setBrush(Qt::white);
    p.drawRect(r);
    for (double x = r.left() + 12; x < r.right(); x += 16)
        p.drawLine(QPointF(x, r.top() + 3), QPointF(x, r.bottom() - 3));
}

void workshopFurniture(QPainter &p)
{
    // Steel columns of the hall.
    p.setPen(Qt::NoPen);
    for (int x = 330; x <= 930; x += 300)
        for (int y = 280; y <= 520; y += 240)
            p.fillRect(QRectF(x - 8, y - 8, 16, 16), kWallColour);

    oven(p, QRectF(120, 120, 220, 130));
    oven(p, QRectF(420, 120, 220, 130));
    tank(p, QRectF(760, 110, 300, 110));
    conveyor(p, QRectF(160, 320, 880, 34));

    // Office: desks and a cabinet.
    plainRect(p, QRectF(215, 640, 90, 45));
    wardrobe(p, QRectF(67, 527, 130, 30));

    // Loading area marked on the floor.
    p.setPen(QPen(QColor(0xd0, 0xa0, 0x20), 3.0, Qt::DashLine));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(720, 540, 180, 150));
}

Plan workshopPlan()
{
    Plan plan;
    plan.title = QStringLiteral("Reparto trattamenti termici - Pianta");
    plan.outline = QRectF(QPointF(60, 70), QPointF(1140, 730));
    plan.walls = {
        {QLineF(60, 70, 1140, 70), kOuterWall},   {QLineF(1140, 70, 1140, 730), kOuterWall},
        {QLineF(60, 730, 1140, 730), kOuterWall}, {QLineF(60, 70, 60, 730), kOuterWall},
        {QLineF(60, 520, 320, 520), kInnerWall},  {QLineF(320, 520, 320, 730), kInnerWall},
    };
    plan.openings = {
        {QLineF(700, 730, 920, 730), OpeningKind::Gate, +1},          // portone di carico
        {QLineF(120, 730, 200, 730), OpeningKind::Door, -1, false},   // ingresso ufficio
        {QLineF(320, 600, 320, 680), OpeningKind::Door, +1, true},    // ufficio - reparto
        {QLineF(200, 70, 400, 70), OpeningKind::Window},
        {QLineF(500, 70, 700, 70), OpeningKind::Window},
        {QLineF(800, 70, 1000, 70), OpeningKind::Window},
        {QLineF(1140, 300, 1140, 500), OpeningKind::Window},
        {QLineF(60, 200, 60, 400), OpeningKind::Window},
    };
    plan.rooms = {
        {QStringLiteral("Forno 1"), QRectF(120, 120, 220, 130), QPointF(230, 168), false, false},
        {QStringLiteral("Forno 2"), QRectF(420, 120, 220, 130), QPointF(530, 168), false, false},
        {QStringLiteral("Vasca di tempra"), QRectF(760, 110, 300, 110), QPointF(910, 245), false, false},
        {QStringLiteral("Nastro trasportatore"), QRectF(160, 320, 880, 34), QPointF(600, 380), false, false},
        {QStringLiteral("Ufficio"), QRectF(QPointF(60, 520), QPointF(320, 730)), QPointF(150, 600)},
        {QStringLiteral("Reparto"), QRectF(QPointF(60, 70), QPointF(1140, 730)), QPointF(560, 470), false, false},
        {QStringLiteral("Zona carico"), QRectF(720, 540, 180, 150), QPointF(810, 565), false, false},
    };
    plan.furniture = workshopFurniture;
    return plan;
}

QImage render(const Plan &plan)
{
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(kPaper);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    drawFloors(p, plan);
    plan.furniture(p);
    drawWallsAndOpenings(p, plan);
    drawRoomLabels(p, plan);
    drawTitle(p, plan.title);
    drawNorthArrow(p, QPointF(1100, 38));
    drawScaleBar(p, QPointF(60, 752), 5);
    p.end();
    return image;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    QTextStream err(stderr);
    if (args.isEmpty() || args.size() > 2 || (args.size() == 2 && args[1] != QLatin1String("--reparto"))) {
        err << "uso: telvane-drawplan <file.jpg> [--reparto]\n";
        return 2;
    }
    const Plan plan = args.size() == 2 ? workshopPlan() : flatPlan();
    if (!render(plan).save(args[0], "JPG", 90)) {
        err << "impossibile scrivere " << args[0] << '\n';
        return 1;
    }
    return 0;
}
