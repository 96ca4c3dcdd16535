#include "config_editor/editorpages.h"

#include "storage/plantlimits.h"

namespace telvane {

namespace {

const QString General = QStringLiteral("Generale");

QStringList numbers(int from, int to, int step = 1)
{
    QStringList items;
    for (int n = from; n <= to; n += step)
        items.append(QString::number(n));
    return items;
}

FieldSpec field(const QString &section, const QString &key, const QString &defaultValue, FieldKind kind,
                const QString &label, const QString &control = QString())
{
    FieldSpec definition;
    definition.section = section;
    definition.key = key;
    definition.defaultValue = defaultValue;
    definition.kind = kind;
    definition.label = label;
    definition.control = control;
    return definition;
}

FieldSpec choice(const QString &section, const QString &key, const QString &defaultValue, const QString &label,
                 const QString &control, const QStringList &choices, const QStringList &values = {})
{
    FieldSpec definition = field(section, key, defaultValue, FieldKind::Choice, label, control);
    definition.choices = choices;
    definition.choiceValues = values;
    return definition;
}

FieldSpec flag(const QString &section, const QString &key, const QString &label, const QString &control,
               FlagReading reading = FlagReading::NotZeroText)
{
    FieldSpec definition = field(section, key, QStringLiteral("0"), FieldKind::Flag, label, control);
    definition.flagReading = reading;
    return definition;
}

FieldSpec count(const QString &key, int maximum, const QString &label)
{
    FieldSpec definition = field(General, key, QStringLiteral("0"), FieldKind::Count, label, QStringLiteral("Txt_") + key);
    definition.maximum = maximum;
    return definition;
}

// The serial combos take a typed value too: a plant may name its port by device.
FieldSpec rs232Choice(const QString &key, const QString &defaultValue, const QString &label, const QString &control,
                      const QStringList &choices)
{
    FieldSpec definition = choice(QStringLiteral("COM"), key, defaultValue, label, control, choices);
    definition.editableChoice = true;
    return definition;
}

const QStringList Quantities{QStringLiteral("PV"), QStringLiteral("SP"), QStringLiteral("AL1"), QStringLiteral("AL2"),
                             QStringLiteral("AL3")};

// Every item of a group: name, instrument address and decimals.
void addInstrumentFields(PageModel &page, int group)
{
    page.addItemField(group, field({}, QStringLiteral("Nome"), {}, FieldKind::Text, QStringLiteral("Nome")));
    page.addItemField(group, field({}, QStringLiteral("Indirizzo"), {}, FieldKind::Address, QStringLiteral("Indirizzo")));
    FieldSpec decimals = field({}, QStringLiteral("Decimali"), QStringLiteral("0"), FieldKind::Count,
                               QStringLiteral("Decimali"));
    decimals.maximum = 3;
    page.addItemField(group, decimals);
}

void addRegisters(PageModel &page, int group, const QStringList &keys)
{
    for (const QString &key : keys) {
        const bool read = key.endsWith(QLatin1String("_r"));
        const QString label = key.left(key.size() - 2) + (read ? QStringLiteral(" lettura") : QStringLiteral(" scrittura"));
        page.addItemField(group, field({}, key, {}, read ? FieldKind::ReadRegister : FieldKind::WriteRegister, label));
    }
}

} // namespace

QStringList lampColourNames()
{
    return {QStringLiteral("Rosso"), QStringLiteral("Verde"), QStringLiteral("Giallo"), QStringLiteral("Blu"),
            QStringLiteral("Arancio"), QStringLiteral("Bianco"), QStringLiteral("Viola")};
}

PageModel rs232Page()
{
    PageModel page(QStringLiteral("RS232"), QStringLiteral("Porta seriale RS232"));
    page.addField(rs232Choice(QStringLiteral("Porta"), QStringLiteral("1"), QStringLiteral("Porta COM"),
                              QStringLiteral("Cmb_RS232"), numbers(1, 255)));
    page.addField(rs232Choice(QStringLiteral("Formato"), QStringLiteral("9600,N,8,1"), QStringLiteral("Impostazioni"),
                              QStringLiteral("Cmb_ImpRS232"),
                              {QStringLiteral("1200,N,8,1"), QStringLiteral("2400,N,8,1"), QStringLiteral("4800,N,8,1"),
                               QStringLiteral("9600,N,8,1"), QStringLiteral("19200,N,8,1")}));
    page.addField(rs232Choice(QStringLiteral("Retry"), QStringLiteral("1"), QStringLiteral("Tentativi"),
                              QStringLiteral("Cmb_Retry"), numbers(1, 5)));
    // The page offers 400 ms for a missing time-out, where the line itself uses 500.
    page.addField(rs232Choice(QStringLiteral("TimeOut"), QStringLiteral("400"), QStringLiteral("Time out (ms)"),
                              QStringLiteral("Cmb_TimeOut"), numbers(50, 1000, 50)));
    page.addField(rs232Choice(QStringLiteral("Base Remoto"), QStringLiteral("3"), QStringLiteral("Ciclo remoto (s)"),
                              QStringLiteral("Cmb_CicloRem"), numbers(2, 30)));
    page.addField(rs232Choice(QStringLiteral("Base Misura"), QStringLiteral("60"), QStringLiteral("Ciclo misura (s)"),
                              QStringLiteral("Cmb_CicloMisura"), numbers(5, 300)));
    page.addField(rs232Choice(QStringLiteral("Base LED"), QStringLiteral("3"), QStringLiteral("Ciclo LED (s)"),
                              QStringLiteral("Cmb_CicloLED"), numbers(1, 30)));
    page.addField(flag(QStringLiteral("COM"), QStringLiteral("Remoto"), QStringLiteral("Comandi remoti"),
                       QStringLiteral("Chk_Remoto")));
    page.addField(flag(QStringLiteral("COM"), QStringLiteral("Attivita"), QStringLiteral("Controllo attività linea"),
                       QStringLiteral("Chk_Attivita_Linea")));
    page.addField(field(QStringLiteral("Sinottico"), QStringLiteral("SuonoAllarme"), {}, FieldKind::Text,
                        QStringLiteral("Suono allarme"), QStringLiteral("Txt_SuonoAllarme")));
    return page;
}

PageModel generalOptionsPage()
{
    PageModel page(QStringLiteral("Opzioni"), QStringLiteral("Opzioni generali"));
    page.addField(flag(General, QStringLiteral("AutoAvvio"), QStringLiteral("Avvio automatico dell'acquisizione"),
                       QStringLiteral("Chk_AutoAvvio")));
    page.addField(flag(General, QStringLiteral("Grafico"), QStringLiteral("Grafico e registrazione delle misure"),
                       QStringLiteral("Chk_Grafico")));
    page.addField(flag(General, QStringLiteral("Ricette"), QStringLiteral("Ricette"), QStringLiteral("Chk_Ricette")));
    page.addField(flag(General, QStringLiteral("Cronotermostato"), QStringLiteral("Cronotermostato"),
                       QStringLiteral("Chk_Cronotermostato")));
    page.addField(flag(General, QStringLiteral("Master"), QStringLiteral("Master"), QStringLiteral("Chk_Master")));
    return page;
}

PageModel zonesPage()
{
    PageModel page(QStringLiteral("Zone"), QStringLiteral("Zone"));
    const int zones = page.addField(count(QStringLiteral("Zone"), MaxZones, QStringLiteral("Numero di zone")));
    page.addField(field(General, QStringLiteral("Zone Unita"), QStringLiteral("°C"), FieldKind::Text,
                        QStringLiteral("Unità di misura"), QStringLiteral("Txt_Unita")));
    const QStringList indices = numbers(0, 4);
    page.addField(choice(General, QStringLiteral("Zone Testo"), QStringLiteral("1"), QStringLiteral("Valore sul sinottico"),
                         QStringLiteral("Cmb_ZoneTesto"), Quantities, indices));
    page.addField(choice(General, QStringLiteral("Zone Grafico"), QStringLiteral("1"),
                         QStringLiteral("Valore nel grafico e nel registro"), QStringLiteral("Cmb_ZoneGrafico"),
                         Quantities, indices));
    page.addField(choice(General, QStringLiteral("Zone Crono"), QStringLiteral("0"),
                         QStringLiteral("Valore del cronotermostato"), QStringLiteral("Cmb_ZoneCrono"), Quantities,
                         indices));
    // "Definizione Parametri": the names of the synoptic's five text fields.
    for (int n = 1; n <= 5; ++n)
        page.addField(field(QStringLiteral("Sinottico"), QStringLiteral("Campo_%1").arg(n), {}, FieldKind::Text,
                            QStringLiteral("Parametro %1").arg(n), QStringLiteral("Txt_Campo%1").arg(n)));

    const int group = page.addGroup(QStringLiteral("Zona"), MaxZones, zones);
    addInstrumentFields(page, group);
    addRegisters(page, group, {QStringLiteral("PV_r"), QStringLiteral("SP_r"), QStringLiteral("AL1_r"),
                               QStringLiteral("AL2_r"), QStringLiteral("AL3_r"), QStringLiteral("REM_r"),
                               QStringLiteral("PV_w"), QStringLiteral("SP_w"), QStringLiteral("AL1_w"),
                               QStringLiteral("AL2_w"), QStringLiteral("AL3_w"), QStringLiteral("REM_w")});
    // The first zone's instrument is always the master of its line.
    page.addItemField(group, flag({}, QStringLiteral("Slave"), QStringLiteral("Slave"), {}),
                      [](int item) { return item == 0; });
    page.addItemField(group, flag({}, QStringLiteral("Cronotermostato"), QStringLiteral("Cronotermostato"), {}));
    page.addItemField(group, field({}, QStringLiteral("Colore"), {}, FieldKind::Colour, QStringLiteral("Colore")));
    for (int n = 1; n <= 5; ++n)
        page.addItemField(group, field({}, QStringLiteral("Campo_%1").arg(n), {}, FieldKind::Text,
                                       QStringLiteral("Parametro %1").arg(n)));
    return page;
}

PageModel switchesAndLedsPage()
{
    PageModel page(QStringLiteral("Interruttori"), QStringLiteral("Interruttori e LED"));
    const int switchCount = page.addField(count(QStringLiteral("Interruttori"), MaxSwitches,
                                                QStringLiteral("Numero di interruttori")));
    const int ledCount = page.addField(count(QStringLiteral("LED"), MaxLeds, QStringLiteral("Numero di LED")));

    const int switches = page.addGroup(QStringLiteral("Interruttore"), MaxSwitches, switchCount);
    addInstrumentFields(page, switches);
    addRegisters(page, switches, {QStringLiteral("REM_r"), QStringLiteral("On_r"), QStringLiteral("Off_r"),
                                  QStringLiteral("REM_w"), QStringLiteral("On_w"), QStringLiteral("Off_w")});
    page.addItemField(switches, field({}, QStringLiteral("Val_on"), QStringLiteral("0"), FieldKind::Value,
                                      QStringLiteral("Valore di accensione")));
    page.addItemField(switches, field({}, QStringLiteral("Val_off"), QStringLiteral("0"), FieldKind::Value,
                                      QStringLiteral("Valore di spegnimento")));

    const int leds = page.addGroup(QStringLiteral("LED"), MaxLeds, ledCount);
    addInstrumentFields(page, leds);
    addRegisters(page, leds, {QStringLiteral("REM_r"), QStringLiteral("P1_r"), QStringLiteral("REM_w")});
    page.addItemField(leds, field({}, QStringLiteral("Val"), QStringLiteral("0"), FieldKind::Value,
                                  QStringLiteral("Valore di confronto")));
    page.addItemField(leds, choice({}, QStringLiteral("Condizione"), QStringLiteral("1"), QStringLiteral("Condizione"), {},
                                   {QStringLiteral(">="), QStringLiteral("<="), QStringLiteral("="), QStringLiteral(">"),
                                    QStringLiteral("<"), QStringLiteral("<>")},
                                   numbers(1, 6)));
    page.addItemField(leds, choice({}, QStringLiteral("Col"), QStringLiteral("1"), QStringLiteral("Colore della spia"), {},
                                   lampColourNames(), numbers(0, 6)));
    return page;
}

PageModel doorAndWebcamPage()
{
    PageModel page(QStringLiteral("Apriporta"), QStringLiteral("Apriporta e webcam"));
    const QString door = QStringLiteral("Apriporta");
    page.addField(flag(General, QStringLiteral("Apriporta"), QStringLiteral("Apriporta presente"),
                       QStringLiteral("Chk_Apriporta"), FlagReading::PositiveNumber));
    page.addField(field(door, QStringLiteral("Nome"), QStringLiteral("Apriporta"), FieldKind::Text, QStringLiteral("Nome")));
    page.addField(field(door, QStringLiteral("Indirizzo"), {}, FieldKind::Address, QStringLiteral("Indirizzo")));
    FieldSpec decimals = field(door, QStringLiteral("Decimali"), QStringLiteral("0"), FieldKind::Count,
                               QStringLiteral("Decimali"));
    decimals.maximum = 3;
    page.addField(decimals);
    page.addField(field(door, QStringLiteral("REM_r"), {}, FieldKind::ReadRegister, QStringLiteral("REM lettura")));
    page.addField(field(door, QStringLiteral("REM_w"), {}, FieldKind::WriteRegister, QStringLiteral("REM scrittura")));
    page.addField(field(door, QStringLiteral("On_w"), {}, FieldKind::WriteRegister, QStringLiteral("Apertura")));
    page.addField(field(door, QStringLiteral("Off_w"), {}, FieldKind::WriteRegister, QStringLiteral("Rilascio")));
    page.addField(field(door, QStringLiteral("Val_on"), QStringLiteral("0"), FieldKind::Value,
                        QStringLiteral("Valore di apertura")));
    page.addField(field(door, QStringLiteral("Val_off"), QStringLiteral("0"), FieldKind::Value,
                        QStringLiteral("Valore di rilascio")));
    FieldSpec pulse = field(door, QStringLiteral("Tempo"), QStringLiteral("1000"), FieldKind::Count,
                            QStringLiteral("Durata dell'apertura (ms)"), QStringLiteral("Txt_Tempo"));
    pulse.minimum = 1;
    pulse.maximum = 60000;
    page.addField(pulse);
    page.addField(field(QStringLiteral("Sinottico"), QStringLiteral("SuonoPorta"), {}, FieldKind::Text,
                        QStringLiteral("Suono all'apertura"), QStringLiteral("Txt_SuonoPorta")));
    page.addField(flag(General, QStringLiteral("Webcam"), QStringLiteral("Webcam presente"), QStringLiteral("Chk_Webcam"),
                       FlagReading::PositiveNumber));
    page.addField(field(QStringLiteral("Webcam"), QStringLiteral("Nome"), QStringLiteral("Webcam"), FieldKind::Text,
                        QStringLiteral("Nome della webcam"), QStringLiteral("Txt_Webcam")));
    return page;
}

PageModel clockPage()
{
    PageModel page(QStringLiteral("Orologio"), QStringLiteral("Impostazioni orologio"));
    const int group = page.addGroup(QStringLiteral("Zona"), MaxZones, General, QStringLiteral("Zone"));
    page.addItemField(group, field({}, QStringLiteral("Ora_w"), {}, FieldKind::ClockRegister, QStringLiteral("Ora")));
    page.addItemField(group, field({}, QStringLiteral("Minuti_w"), {}, FieldKind::ClockRegister, QStringLiteral("Minuti")));
    page.addItemField(group, field({}, QStringLiteral("Giorno_w"), {}, FieldKind::ClockRegister,
                                   QStringLiteral("Giorno della settimana")));
    return page;
}

} // namespace telvane
