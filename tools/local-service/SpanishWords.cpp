#include "SpanishWords.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <array>
#include <vector>

using namespace Qt::StringLiterals;

static constexpr qsizetype shortestMistyped = 6;
static constexpr qsizetype shortestMistypedTwice = 10;
static constexpr qsizetype shortestSlipped = 5;
static constexpr int largestSpoken = 1000;

QString wordStem(const QString &folded)
{
    QString stem = folded;
    if (stem.size() >= 4 && stem.endsWith(u's'))
        stem.chop(1);
    const bool endsInE = stem.size() >= 4 && stem.endsWith(u'e');
    const bool endsInGender = stem.size() >= 5 && (stem.endsWith(u'a') || stem.endsWith(u'o'));
    if (endsInE || endsInGender)
        stem.chop(1);
    if (stem.endsWith(u'z'))
        stem.back() = u'c';
    return stem;
}

QString wordSound(const QString &stem)
{
    QString sound;
    for (qsizetype i = 0; i < stem.size(); ++i) {
        const QChar c = stem[i];
        const QChar next = i + 1 < stem.size() ? stem[i + 1] : QChar();
        const bool isSoft = next == u'e' || next == u'i';
        QChar heard = c;
        const QChar before = i > 0 ? stem[i - 1] : QChar();
        const bool isSilent = (c == u'h' && before != u'c') || (c == u'u' && before == u'q')
            || (c == u'l' && before == u'l');
        if (isSilent)
            continue;
        if (c == u'v')
            heard = u'b';
        else if (c == u'z' || (c == u'c' && isSoft))
            heard = u's';
        else if (c == u'c' || c == u'q')
            heard = u'k';
        else if (c == u'g' && isSoft)
            heard = u'j';
        else if (c == u'l' && next == u'l')
            heard = u'y';
        if (sound.isEmpty() || sound.back() != heard)
            sound += heard;
    }
    return sound;
}

// Beginnings and ends that change what a medical word means.
static constexpr std::array tellingPrefixes{
    "hiper"_L1, "hipo"_L1,  "endo"_L1,  "exo"_L1,   "ecto"_L1,  "epi"_L1,   "meso"_L1,
    "macro"_L1, "micro"_L1, "intra"_L1, "inter"_L1, "extra"_L1, "poli"_L1,  "oligo"_L1,
    "peri"_L1,  "trans"_L1, "supra"_L1, "infra"_L1, "normo"_L1, "osteo"_L1, "condro"_L1};
static constexpr std::array tellingSuffixes{
    "itis"_L1,  "osis"_L1,   "oma"_L1,    "emia"_L1,   "uria"_L1,  "penia"_L1,   "filia"_L1,
    "patia"_L1, "lisis"_L1,  "blasto"_L1, "clasto"_L1, "cito"_L1,  "genesis"_L1, "ectomia"_L1,
    "algia"_L1, "grafia"_L1, "scopia"_L1, "plasia"_L1, "trofia"_L1};

template <typename Affixes, typename Holds>
static QLatin1StringView affixOf(const Affixes &affixes, Holds holds)
{
    const auto found = std::find_if(affixes.begin(), affixes.end(), holds);
    return found == affixes.end() ? QLatin1StringView() : *found;
}

static bool differInMeaning(const QString &a, const QString &b)
{
    const auto prefix = [](const QString &word) {
        return affixOf(tellingPrefixes, [&](auto affix) { return word.startsWith(affix); });
    };
    const auto suffix = [](const QString &word) {
        return affixOf(tellingSuffixes, [&](auto affix) { return word.endsWith(affix); });
    };
    const auto differ = [](QLatin1StringView x, QLatin1StringView y) {
        return !x.isEmpty() && !y.isEmpty() && x != y;
    };
    return differ(prefix(a), prefix(b)) || differ(suffix(a), suffix(b));
}

// Edits and swaps of neighbours between two words (optimal string alignment).
static qsizetype editDistance(const QString &a, const QString &b)
{
    const auto width = static_cast<std::size_t>(b.size()) + 1;
    std::vector<qsizetype> beforeLast(width);
    std::vector<qsizetype> last(width);
    std::vector<qsizetype> row(width);
    for (std::size_t j = 0; j < width; ++j)
        last[j] = static_cast<qsizetype>(j);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const auto at = static_cast<std::size_t>(j);
            const qsizetype change = a[i - 1] == b[j - 1] ? 0 : 1;
            row[at] = std::min({row[at - 1] + 1, last[at] + 1, last[at - 1] + change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[at] = std::min(row[at], beforeLast[at - 2] + 1);
        }
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return last[width - 1];
}

bool isLikelyTypo(const QString &a, const QString &b)
{
    const qsizetype length = std::min(a.size(), b.size());
    if (length < shortestMistyped || differInMeaning(a, b))
        return false;
    const QString soundOfA = wordSound(wordStem(a));
    const QString soundOfB = wordSound(wordStem(b));
    if (soundOfA == soundOfB)
        return true;
    const qsizetype most = length < shortestMistypedTwice ? 1 : 2;
    if (soundOfA.isEmpty() || soundOfB.isEmpty() || soundOfA.front() != soundOfB.front()
        || std::abs(soundOfA.size() - soundOfB.size()) > most)
        return false;
    return editDistance(soundOfA, soundOfB) <= most;
}

// Whether one word is the other with a letter more, or with two neighbours swapped.
static bool isOneSlipAway(const QString &said, const QString &meant)
{
    const auto [saidEnd, meantEnd]
        = std::mismatch(said.begin(), said.end(), meant.begin(), meant.end());
    const QStringView saidRest(saidEnd, said.end());
    const QStringView meantRest(meantEnd, meant.end());
    if (saidRest.size() < meantRest.size())
        return saidRest == meantRest.sliced(1);
    if (saidRest.size() > meantRest.size())
        return saidRest.sliced(1) == meantRest;
    return saidRest.size() >= 2 && saidRest[0] == meantRest[1] && saidRest[1] == meantRest[0]
        && saidRest.sliced(2) == meantRest.sliced(2);
}

HeardWord::HeardWord(const QString &folded)
    : word(folded)
    , sound(wordSound(folded))
{ }

bool isSlipOf(const HeardWord &said, const HeardWord &meant)
{
    if (meant.word.size() < shortestSlipped || std::abs(said.word.size() - meant.word.size()) > 1
        || said.sound.isEmpty() || meant.sound.isEmpty()
        || said.sound.front() != meant.sound.front())
        return false;
    // Another letter in place of one makes another word too often: "hecho" is no "pecho".
    return said.sound == meant.sound || isOneSlipAway(said.word, meant.word);
}

// The words of a list written as one text.
static QSet<QString> wordSet(const QString &words)
{
    const QStringList list = words.split(u' ', Qt::SkipEmptyParts);
    return {list.begin(), list.end()};
}

bool isCommonWord(const QString &folded)
{
    static const QSet<QString> common = wordSet(
        u"a al algo algun alguna algunas algunos alguien ante antes aquel aquella aqui asi aun "
        u"aunque "
        "bien buen buena buenas bueno buenos cada como con contra cual cuales cuando cuanto cuanta "
        "cuantos cuantas de del desde donde dos durante e el ella ellas ellos en entonces entre "
        "era "
        "eran eres es esa esas ese eso esos esta estan estas este esto estos estoy etc fue fueron "
        "ha "
        "hace hacen hacer haces hay hasta hoy incluso ir la las le les lo los mas me mi mis misma "
        "mismo mucha mucho muchos muy nada ni no nos nosotros o os otra otras otro otros para pero "
        "poco por porque pues que quien quienes se sea sean segun ser si sido siempre sin sino "
        "sobre "
        "solo son soy su sus tambien tan tanto te ti tiene tienen tengo todo toda todas todos tu "
        "tus "
        "u un una unas uno unos va van vamos vas vos y ya yo "
        "ayuda ayudame ayudar concepto conceptos contame cosa cosas da dale dame dan das deberia "
        "decime decir dice dicen duda dudas entender entendi entiendo estudiar estudiando estudio "
        "examen explica explicar explicame explicas explicarme explicacion favor final forma "
        "gracias "
        "haceme hago hola importa importancia importante materia mejor necesito onda parcial pasa "
        "pasan pasar pasame podes podrias pregunta preguntas preguntan profe puede pueden puedo "
        "quiero quisiera resumen rol rolan saber sabes se sirve sirven significa tema temas tipo "
        "tipos tirame toman tomar ver verdad vez viejo che tipo posta gente "
        "querria queria podria poder explicarias ayudarias entran entra ejemplo ejemplos aulora "
        "lado darme ayudas paciente pacientes guardia consultorio primero nunca digo dijo creo "
        "vendria favor trata hablame habla acuerdo acordas refiere llama llaman"_s);
    return common.contains(folded);
}

bool isEnglishWord(const QString &folded)
{
    static const QSet<QString> english = wordSet(
        u"the of and is are was were what how why when where which who this that these those with "
        "without from for to in on at by it its be been can could should would will do does did "
        "you your my we our they their he she his her not or if then than up off out into over "
        "please slow calm shut let get got put keep"_s);
    return english.contains(folded);
}

int spokenNumber(const QString &folded)
{
    bool isNumber = false;
    const int digits = folded.toInt(&isNumber);
    if (isNumber)
        return digits > 0 && digits <= largestSpoken ? digits : 0;
    static const QHash<QString, int> spoken{
        {u"un"_s, 1},      {u"una"_s, 1},     {u"uno"_s, 1},     {u"dos"_s, 2},
        {u"tres"_s, 3},    {u"cuatro"_s, 4},  {u"cinco"_s, 5},   {u"seis"_s, 6},
        {u"siete"_s, 7},   {u"ocho"_s, 8},    {u"nueve"_s, 9},   {u"diez"_s, 10},
        {u"once"_s, 11},   {u"doce"_s, 12},   {u"quince"_s, 15}, {u"veinte"_s, 20},
        {u"primer"_s, 1},  {u"primero"_s, 1}, {u"primera"_s, 1}, {u"segundo"_s, 2},
        {u"segunda"_s, 2}, {u"tercer"_s, 3},  {u"tercero"_s, 3}, {u"tercera"_s, 3},
        {u"cuarto"_s, 4},  {u"cuarta"_s, 4},  {u"quinto"_s, 5},  {u"quinta"_s, 5},
        {u"sexto"_s, 6},   {u"sexta"_s, 6},   {u"septimo"_s, 7}, {u"septima"_s, 7},
        {u"octavo"_s, 8},  {u"octava"_s, 8},  {u"noveno"_s, 9},  {u"novena"_s, 9},
        {u"decimo"_s, 10}, {u"decima"_s, 10}};
    return spoken.value(folded);
}
