#pragma once

#include "platform/qtprintersink.h"
#include "season/seasons.h"

#include <QList>
#include <QWidget>

#include <functional>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace telvane {

class Prompts;
class SeasonChange;
struct Runtime;

// The season change window (`Stagione`, captioned "Ricette" in the industrial mode):
// the recipe named for each change, the current season, the rows of the next change's
// recipe in seven lists that scroll together, and `Cmd_Invio_Stagione`, which sends them
// with the progress in `Pic_Avanzamento`. The window stays live during a send (the
// master lets events through while it waits) but a second send cannot start.
class Stagione final : public QWidget
{
    Q_OBJECT

public:
    Stagione(Runtime &rt, Prompts &prompts, QWidget *parent = nullptr);
    ~Stagione() override;

    // Picks a recipe file for a change; by default a file dialog on "Ricetta". Returns
    // the chosen path, or nothing.
    using FileChooser = std::function<QString(const QString &folder)>;
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }

    // Asked before every send; refuses it (and tells the operator) while acquiring.
    void setSendGuard(std::function<bool()> allowed) { m_sendAllowed = std::move(allowed); }

    // Where "Stampa resoconto" prints; by default the system's printer, or a PDF in
    // the program folder when there is none.
    using PrintTargetOpener = std::function<PrintTarget()>;
    void setPrintTargetOpener(PrintTargetOpener opener) { m_printTarget = std::move(opener); }

    SeasonChange &seasonChange() { return *m_change; }

    // Re-reads the settings and loads the next change's recipe into the lists, saying
    // so in the window: a box on each opening would only be clicked away.
    void refresh();

    // Room for a recipe of twenty rows without scrolling, on a 1280 x 800 screen.
    QSize sizeHint() const override { return {1000, 640}; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void buildLists(QWidget *parent);
    void chooseRecipe(Season season);
    void fillLists();
    void markRow(int row, bool ok);
    void showSeason();
    void sendingChanged(bool sending);
    void Cmd_Invio_StagioneClick();
    void reportReady(const QString &path);
    void printReport();

    Runtime &m_rt;
    Prompts &m_prompts;
    SeasonChange *m_change;
    FileChooser m_chooseFile;
    std::function<bool()> m_sendAllowed;
    PrintTargetOpener m_printTarget;

    QLabel *m_current;
    QLabel *m_next;
    QLineEdit *m_summerFile;
    QLineEdit *m_winterFile;
    QPushButton *m_summerChoose;
    QPushButton *m_winterChoose;
    QList<QListWidget *> m_lists; // Lst_nDev .. Lst_NomePar
    QCheckBox *m_verify;
    QPushButton *m_send;
    QPushButton *m_print;
    QFrame *m_progressPanel;
    QProgressBar *m_progress;
    QLabel *m_progressText;
    QLabel *m_outcome;
};

} // namespace telvane
