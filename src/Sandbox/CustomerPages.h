#pragma once

class QHttpServer;

namespace corvellan::sandbox {

class CustomerBook;

/// The pages that the program opens in a browser: a customer's in the CRM ("/crm/<number>") and in HubSpot
/// ("/crm/company/<number>", "/crm/contacts/<portal>/company/<number>"), and the one where the browser extension is
/// to be had ("/extension"). They want no token. The customers must outlive the server.
void addCustomerPages(QHttpServer& http, const CustomerBook& customers);

}  // namespace corvellan::sandbox
