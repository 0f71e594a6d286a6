#pragma once

#include "Briefing.h"
#include "ProtocolFields.h"

/// The fields of the back-end's records, told once for reading and for writing (see ProtocolFields.h).
/// Keys are the members' names but for `eventType` and `discTypes`.
namespace corvellan {

template <typename Io, FieldsOf<ResolvedCompany> T>
void fields(Io& io, T& company) {
    io.field("source", company.source);
    io.field("id", company.id);
    io.field("name", company.name);
    io.field("confidence", company.confidence);
    io.field("domain", company.domain);
    io.field("country", company.country);
    io.field("crmId", company.crmId);
    io.field("hubspotId", company.hubspotId);
    io.field("orderCount", company.orderCount);
    io.field("totalRevenue", company.totalRevenue);
}

template <typename Io, FieldsOf<MeetingAttendee> T>
void fields(Io& io, T& attendee) {
    io.field("email", attendee.email);
    io.field("displayName", attendee.displayName);
    io.field("organizer", attendee.organizer);
    io.field("responseStatus", attendee.responseStatus);
}

template <typename Io, FieldsOf<CalendarMeeting> T>
void fields(Io& io, T& meeting) {
    io.field("id", meeting.id);
    io.field("summary", meeting.summary);
    io.field("start", meeting.start);
    io.field("end", meeting.end);
    io.field("attendees", meeting.attendees);
    io.field("matchedCompany", meeting.matchedCompany);
}

template <typename Io, FieldsOf<SalesBriefIds> T>
void fields(Io& io, T& ids) {
    io.field("crmId", ids.crmId);
    io.field("hubspotCompanyId", ids.hubspotCompanyId);
}

template <typename Io, FieldsOf<SalesBriefCompany> T>
void fields(Io& io, T& company) {
    io.field("user_company_name", company.user_company_name);
    io.field("user_country", company.user_country);
    io.field("user_website", company.user_website);
    io.field("group_name", company.group_name);
    io.field("seller_name", company.seller_name);
    io.field("industry", company.industry);
}

template <typename Io, FieldsOf<SalesBriefHubspot> T>
void fields(Io& io, T& hubspot) {
    io.field("name", hubspot.name);
    io.field("domain", hubspot.domain);
    io.field("country", hubspot.country);
    io.field("industry", hubspot.industry);
    io.field("city", hubspot.city);
    io.field("number_of_employees", hubspot.number_of_employees);
    io.field("annual_revenue", hubspot.annual_revenue);
}

template <typename Io, FieldsOf<SalesBriefRevenue> T>
void fields(Io& io, T& revenue) {
    io.field("total_orders", revenue.total_orders);
    io.field("total_usd", revenue.total_usd);
    io.field("last_12mo_usd", revenue.last_12mo_usd);
    io.field("first_order", revenue.first_order);
    io.field("last_order", revenue.last_order);
}

template <typename Io, FieldsOf<SalesBriefProduct> T>
void fields(Io& io, T& product) {
    io.field("product_name", product.product_name);
    io.field("total_quantity", product.total_quantity);
    io.field("total_usd", product.total_usd);
}

template <typename Io, FieldsOf<SalesBriefPipeline> T>
void fields(Io& io, T& pipeline) {
    io.field("openDealCount", pipeline.openDealCount);
    io.field("openDealValue", pipeline.openDealValue);
    io.field("recentWonCount", pipeline.recentWonCount);
    io.field("recentWonValue", pipeline.recentWonValue);
}

template <typename Io, FieldsOf<SalesBriefContact> T>
void fields(Io& io, T& contact) {
    io.field("email", contact.email);
    io.field("firstname", contact.firstname);
    io.field("lastname", contact.lastname);
}

template <typename Io, FieldsOf<SalesBriefNote> T>
void fields(Io& io, T& note) {
    io.field("id", note.id);
    io.field("body", note.body);
    io.field("hs_timestamp", note.hs_timestamp);
    io.field("author", note.author);
}

template <typename Io, FieldsOf<SalesBriefLinks> T>
void fields(Io& io, T& links) {
    io.field("crm", links.crm);
    io.field("hubspot", links.hubspot);
}

template <typename Io, FieldsOf<SalesBrief> T>
void fields(Io& io, T& brief) {
    io.field("ids", brief.ids);
    io.field("company", brief.company);
    io.field("hubspot", brief.hubspot);
    io.field("revenue", brief.revenue);
    io.field("topProducts", brief.topProducts);
    io.field("pipeline", brief.pipeline);
    io.field("contacts", brief.contacts);
    io.field("notes", brief.notes);
    io.field("links", brief.links);
    io.field("error", brief.error);
}

template <typename Io, FieldsOf<HandoffHubspot> T>
void fields(Io& io, T& hubspot) {
    io.field("noteId", hubspot.noteId);
    io.field("taskId", hubspot.taskId);
}

template <typename Io, FieldsOf<HandoffMeta> T>
void fields(Io& io, T& meta) {
    io.field("crmId", meta.crmId);
    io.field("hubspotCompanyId", meta.hubspotCompanyId);
    io.field("dealId", meta.dealId);
    io.field("deviceCount", meta.deviceCount);
    io.field("callCount", meta.callCount);
    io.field("engagementEmails", meta.engagementEmails);
    io.field("preCallTaskCount", meta.preCallTaskCount);
}

template <typename Io, FieldsOf<HandoffResponse> T>
void fields(Io& io, T& handoff) {
    io.field("handoffNote", handoff.handoffNote);
    io.field("hubspot", handoff.hubspot);
    io.field("meta", handoff.meta);
}

template <typename Io, FieldsOf<TimelineEvent> T>
void fields(Io& io, T& event) {
    io.field("type", event.eventType);
    io.field("date", event.date);
    io.field("subject", event.subject);
    io.field("outcome", event.outcome);
    io.field("owner", event.owner);
}

template <typename Io, FieldsOf<TimelineResponse> T>
void fields(Io& io, T& response) {
    io.field("entityType", response.entityType);
    io.field("entityId", response.entityId);
    io.field("daysBack", response.daysBack);
    io.field("activityTypes", response.activityTypes);
    io.field("count", response.count);
    io.field("timeline", response.timeline);
}

template <typename Io, FieldsOf<ScenarioItem> T>
void fields(Io& io, T& scenario) {
    io.field("key", scenario.key);
    io.field("name", scenario.name);
    io.field("company", scenario.company);
    io.field("industry", scenario.industry);
}

template <typename Io, FieldsOf<ScenariosResponse> T>
void fields(Io& io, T& response) {
    io.field("scenarios", response.scenarios);
    io.field("disc_types", response.discTypes);
}

}  // namespace corvellan
