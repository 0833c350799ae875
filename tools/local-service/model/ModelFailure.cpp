#include "ModelFailure.h"

using namespace Qt::StringLiterals;

Refusal refusal(ModelFailure failure)
{
    switch (failure) {
    case ModelFailure::Silent:
        return {504, u"El modelo tardó demasiado en responder. Probá de nuevo en un rato."_s};
    case ModelFailure::TooManyQuestions:
        return {502, u"El modelo recibió demasiadas consultas. Probá de nuevo en un rato."_s};
    case ModelFailure::Unreachable:
    case ModelFailure::Untrusted:
        return {502, u"No pude conectarme con el modelo."_s};
    case ModelFailure::KeyRefused:
        return {502, u"El modelo no aceptó la clave del servicio."_s};
    case ModelFailure::NotFound:
        return {502, u"El modelo que el servicio pide no existe."_s};
    default:
        return {502, u"El modelo falló al responder. Probá de nuevo en un rato."_s};
    }
}

QString logReason(ModelFailure failure)
{
    switch (failure) {
    case ModelFailure::Unreachable:
        return u"el modelo no acepta conexiones"_s;
    case ModelFailure::Untrusted:
        return u"el certificado del modelo no es de confianza"_s;
    case ModelFailure::KeyRefused:
        return u"el modelo rechazó la clave (401 o 403)"_s;
    case ModelFailure::NotFound:
        return u"el modelo no existe en esa dirección (404)"_s;
    case ModelFailure::TooManyQuestions:
        return u"el modelo recibió demasiadas consultas (429)"_s;
    case ModelFailure::OtherStatus:
        return u"el modelo respondió con otro estado que 200"_s;
    case ModelFailure::ReportedError:
        return u"el modelo informó un error"_s;
    case ModelFailure::NotUnderstood:
        return u"lo que mandó el modelo no se entiende"_s;
    case ModelFailure::Silent:
        return u"el modelo se quedó callado"_s;
    case ModelFailure::BrokenOff:
        return u"el modelo cortó la conexión"_s;
    case ModelFailure::Empty:
        return u"el modelo no respondió nada"_s;
    }
    Q_UNREACHABLE();
}
