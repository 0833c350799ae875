#include "MemoryRequest.h"

#include "FoldedText.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

std::optional<MemoryRequest> memoryRequest(const QString &message)
{
    // Far beyond any way to say it.
    constexpr qsizetype longest = 200;
    if (message.size() > longest)
        return std::nullopt;
    static const QRegularExpression courtesy(
        u"\\b(por favor|porfa|hola|che|aulora|ia|gracias|ahora|ya|quiero que|necesito que|podes|"
        "podrias|te pido que)\\b"_s);
    static const QRegularExpression forget(
        u"^(olvida|olvidate|olvides|olvidarte|olvidar|olvidas|borra|borrame|borres|borrar|borras|"
        "elimina|eliminar|elimines|borra todo|olvida todo) "
        "(de )?(todo )?(lo que (sabes|recordas|recuerdas|tenes guardado|guardaste|aprendiste|"
        "tenes|te acordas) (de|sobre) mi( persona)?|(de )?mi|mis datos|mi memoria|"
        "(la|tu) memoria( (de|sobre) mi)?|lo mio|lo que te (conte|dije) (de|sobre) mi)$"_s);
    static const QRegularExpression recall(
        u"^(que|decime que|contame que) (es lo que )?(cosas )?(sabes|recordas|recuerdas|"
        "tenes guardado|guardas|guardaste|te acordas) (de|sobre) mi$"_s);
    const QString text = foldedText(message).remove(courtesy).simplified();
    if (forget.match(text).hasMatch())
        return MemoryRequest::Forget;
    if (recall.match(text).hasMatch())
        return MemoryRequest::Recall;
    return std::nullopt;
}

QStringList forgottenAnswer(bool isForgotten)
{
    if (!isForgotten)
        return {u"No pude borrar lo que recuerdo de vos. Probá de nuevo en un rato."_s};
    return {u"Listo: borré todo lo que recordaba de vos."_s,
            u"Las conversaciones guardadas en tu computadora no cambian; se borran desde "
            "**Borrar historial**."_s};
}

QStringList recalledAnswer(const UserContext &context)
{
    QStringList lines;
    if (!context.subjects.isEmpty())
        lines += u"- Estudiaste: "_s + context.subjects.join(u", "_s) + u'.';
    if (!context.toReview.isEmpty())
        lines += u"- Te costó en la práctica: "_s + context.toReview.join(u", "_s) + u'.';
    if (!context.turns.isEmpty())
        lines += u"- Lo último que hablamos en esta conversación."_s;
    if (lines.isEmpty())
        return {u"No recuerdo nada de vos."_s};
    lines.prepend(u"Esto es todo lo que recuerdo de vos:"_s);
    lines += u"Si querés que lo borre, escribí **Olvidá lo que sabés de mí**."_s;
    return lines;
}
